// How the window stands what the directory tree does: how long a node takes from the key to the painted rows
// with 10,000 folders loaded, and the longest time between two turns of the event loop while a folder of
// 50,000 is opened and while 1,000 of its folders are removed.

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTreeView>

#include "bench/shellint/machine.h"
#include "shellint/forms/uc_directory_tree.h"
#include "shellint/inotify_watch.h"

namespace tarnel::bench {
namespace {

class SilentDialogue : public Dialogue {
 public:
  Answer Ask(const Question& question) override { return SafeAnswer(question.buttons); }
  void Yield() override {}
  bool CancelRequested() const override { return false; }
};

class TreeWindow {
 public:
  TreeWindow() {
    tree = std::make_unique<ucDirectoryTree>(m_files, m_dialogue, std::make_unique<Machine>(),
                                             std::make_unique<InotifyWatch>());
    tree->Initialize();
    tree->resize(400, 700);
    tree->show();
    Settle();
  }

  /// Until nothing has happened for a while; gives the longest turn in milliseconds.
  double Settle() {
    double longest = 0;
    QElapsedTimer quiet, turn;
    quiet.start();
    while (quiet.elapsed() < 300) {
      turn.start();
      QCoreApplication::processEvents();
      const double took = static_cast<double>(turn.nsecsElapsed()) / 1e6;
      longest = std::max(longest, took);
      if (took > 1) quiet.restart();
    }
    return longest;
  }

  std::unique_ptr<ucDirectoryTree> tree;

 private:
  PosixFiles m_files;
  SilentDialogue m_dialogue;
};

void OpenANodeAmong10000(benchmark::State& state) {
  TreeWindow window;
  for (int i = 0; i < 100; ++i)
    window.tree->SetPath(Folders::Where() / "many" / std::to_string(i));
  window.Settle();
  QTreeView& view = *window.tree->TreeHwnd();
  for (auto _ : state) {
    state.PauseTiming();
    window.tree->SetPath(Folders::Where() / "many" / "50");
    view.collapse(view.currentIndex());
    window.Settle();
    state.ResumeTiming();
    QTest::keyClick(&view, Qt::Key_Return);
    view.grab();
  }
}
BENCHMARK(OpenANodeAmong10000)->Unit(benchmark::kMillisecond)->Iterations(10);

void LongestTurnInAFolderOf50000(benchmark::State& state) {
  TreeWindow window;
  for (auto _ : state) {
    QElapsedTimer turn;
    turn.start();
    window.tree->SetPath(Folders::Where() / "wide");
    const auto first = static_cast<double>(turn.nsecsElapsed()) / 1e6;
    state.counters["open_ms"] = first;
    state.counters["longest_turn_ms"] = window.Settle();
  }
}
BENCHMARK(LongestTurnInAFolderOf50000)->Unit(benchmark::kMillisecond)->Iterations(1);

void LongestTurnWhile1000FoldersGo(benchmark::State& state) {
  TreeWindow window;
  window.tree->SetPath(Folders::Where() / "wide");
  window.Settle();
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i)
      std::filesystem::remove(Folders::Where() / "wide" / std::to_string(i * 7));
    state.counters["longest_turn_ms"] = window.Settle();
  }
}
BENCHMARK(LongestTurnWhile1000FoldersGo)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace tarnel::bench
