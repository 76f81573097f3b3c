// How long the main window takes with 10,000 hidden files: from a hideout that has been read, from a click on
// a folder and from a click on a column to the painted list.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QUrl>
#include <memory>

#include "app/forms/main_window.h"
#include "carrier/record.h"

namespace tarnel {
namespace {

constexpr std::size_t kFiles = 10'000;

class SilentDialogue : public Dialogue {
 public:
  Answer Ask(const Question& question) override { return SafeAnswer(question.buttons); }
  void Yield() override {}
  bool CancelRequested() const override { return false; }
};

MirrorRow Row(const std::shared_ptr<const HideoutKey>& hideout, std::size_t number) {
  MirrorRow row;
  row.hideout = hideout;
  row.record = BuildRecord({.name = WipedText("file " + std::to_string(number * 7919 % kFiles) + ".txt"),
                            .plainSize = std::to_string(number * 104'729 % 5000),
                            .storedSize = "7",
                            .attributes = "32",
                            .date = "01/02/26 12:00:00",
                            .compressed = "0",
                            .folder = number % 2 == 0 ? "folder" : "",
                            .title = "Benchmark",
                            .mode = {}},
                           RecordWriter::Hide);
  return row;
}

/// A shown window with one hideout of kFiles files, half of them in a folder.
class Bench {
 public:
  Bench() {
    const auto hideout = std::make_shared<const HideoutKey>(HideoutKey{.carrier = "/carrier.png",
                                                                       .carrierName = "carrier.png",
                                                                       .password = Key(Secret("secret")),
                                                                       .algorithm = Algorithm::Rijndael256,
                                                                       .title = "Title"});
    m_root = &m_session.catalogue.AddRoot(hideout, "*RootFolder*");
    m_folder = &m_session.catalogue.EnsureFolderNode(*m_root, "folder");
    for (std::size_t i = 0; i < kFiles; ++i)
      m_session.catalogue.AddRow(Row(hideout, i));
    m_window.resize(900, 600);
    m_window.show();
    Load();
  }

  void Load() {
    m_session.HideoutLoaded(*m_root, kFiles);
    Paint();
  }
  void ClickFolder() {
    m_session.DirView_NodeClick(*m_folder);
    Paint();
  }
  void Sort(Column column) {
    m_session.ColumnClick(column);
    Paint();
  }

 private:
  void Paint() {
    QCoreApplication::processEvents();
    m_window.grab();
  }

  PosixFiles m_files;
  SettingsFile m_settings{m_files, "/dev/null/settings.ini"};
  Session m_session{m_files, m_settings, [](const std::string&) { return std::string(); }};
  SilentDialogue m_dialogue;
  TracelessFileDialogs m_fileDialogs;
  MainWindow m_window{m_session,
                      {.dialogue = m_dialogue,
                       .fileDialogs = m_fileDialogs,
                       .openOutside = [](const QUrl&) {},
                       .openFile = [](const Path&) {},
                       .endProcess = [] {}}};
  TreeNode* m_root;
  TreeNode* m_folder;
};

void Run(benchmark::State& state, void (*step)(Bench&)) {
  Bench bench;
  for (auto _ : state)
    step(bench);
}

BENCHMARK_CAPTURE(Run, ShowALoadedHideout, [](Bench& bench) { bench.Load(); })->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, ClickAFolder, [](Bench& bench) {
  bench.ClickFolder();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, SortBySize, [](Bench& bench) {
  bench.Sort(Column::Size);
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, SortByName, [](Bench& bench) {
  bench.Sort(Column::File);
})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnel
