// How long the directory tree takes without a window: to open a node among 10,000 loaded folders, to open a
// folder of 50,000, and to take in what others did.

#include "shellint/directory_tree.h"

#include <benchmark/benchmark.h>

#include "bench/shellint/machine.h"
#include "shellint/inotify_watch.h"

namespace tarnel::bench {
namespace {

class Silent : public TreeRows, public DirectoryTreeEvents, public Dialogue {
 public:
  DirectoryTree* tree = nullptr;

  void RowsComing(const DirectoryNode&, std::size_t, std::size_t) override {}
  void RowsCame() override {}
  void RowsGoing(const DirectoryNode&, std::size_t, std::size_t) override {}
  void RowsGone() override {}
  void RowMoving(const DirectoryNode&, std::size_t, std::size_t) override {}
  void RowMoved() override {}
  void RowChanged(const DirectoryNode&) override {}

  void OnDirClick(const Path&, bool) override {}
  void OnDirDblClick(const Path&) override {}
  void OnDirCreate(const Path&) override {}
  void OnDirRename(const Path&, const Path&) override {}
  void OnDirRemove(const Path&) override {}
  void OnFileRemove(const Path&) override {}
  void OnFileCreate(const Path&) override {}
  void OnFileRename(const Path&, const Path&) override {}
  void SelectionMoved() override {}
  void ShowExpanded(const DirectoryNode& node) override {
    tree->NodeExpanded(const_cast<DirectoryNode&>(node));
  }
  void EditLabel(const DirectoryNode&) override {}

  Answer Ask(const Question& question) override { return SafeAnswer(question.buttons); }
  void Yield() override {}
  bool CancelRequested() const override { return false; }
};

class Bench {
 public:
  Bench() {
    m_silent.tree = &m_tree;
    m_tree.Initialize();
    Settle();
  }

  void Settle() {
    m_tree.TakeChanges();
    while (m_tree.Continue()) {
    }
  }
  DirectoryNode& Open(const Path& path) {
    return *m_tree.CreateDirNode(Folders::Where() / path, DirectoryTree::Expand::Yes,
                                 DirectoryTree::Missing::Refuse);
  }
  void LoadMany() {
    for (int i = 0; i < 100; ++i)
      Open("many/" + std::to_string(i));
    Settle();
  }
  void Again() {
    m_tree.Clear();
    m_tree.Initialize();
    Settle();
  }
  DirectoryTree& Tree() { return m_tree; }

 private:
  Machine m_machine;
  PosixFiles m_files;
  InotifyWatch m_watch;
  Silent m_silent;
  DirectoryTree m_tree{{.files = m_files,
                        .places = m_machine,
                        .watch = m_watch,
                        .dialogue = m_silent,
                        .rows = m_silent,
                        .events = m_silent}};
};

void OpenANodeAmong10000(benchmark::State& state) {
  Bench bench;
  bench.LoadMany();
  int number = 0;
  for (auto _ : state) {
    bench.Open("many/50/" + std::to_string(number++ % 100));
    bench.Settle();
  }
}
BENCHMARK(OpenANodeAmong10000)->Unit(benchmark::kMillisecond);

void OpenAFolderOf50000(benchmark::State& state) {
  Bench bench;
  for (auto _ : state) {
    state.PauseTiming();
    bench.Again();
    state.ResumeTiming();
    bench.Open("wide");
  }
}
BENCHMARK(OpenAFolderOf50000)->Unit(benchmark::kMillisecond)->Iterations(5);

void ReadTheLevelBelow50000(benchmark::State& state) {
  Bench bench;
  for (auto _ : state) {
    state.PauseTiming();
    bench.Again();
    bench.Open("wide");
    state.ResumeTiming();
    bench.Settle();
  }
}
BENCHMARK(ReadTheLevelBelow50000)->Unit(benchmark::kMillisecond)->Iterations(3);

void TakeIn100Renames(benchmark::State& state) {
  Bench bench;
  bench.LoadMany();
  bench.Open("wide");
  bench.Settle();
  std::string name = "wide/";
  for (auto _ : state) {
    state.PauseTiming();
    for (int i = 0; i < 100; ++i)
      std::filesystem::rename(
          Folders::Where() / (name + std::to_string(i)),
          Folders::Where() / ((name == "wide/" ? "wide/x" : "wide/") + std::to_string(i)));
    name = name == "wide/" ? "wide/x" : "wide/";
    state.ResumeTiming();
    bench.Settle();
  }
}
BENCHMARK(TakeIn100Renames)->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace
}  // namespace tarnel::bench
