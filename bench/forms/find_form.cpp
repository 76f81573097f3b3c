// The window that searches: the longest time between two turns of the event loop, and the time that a search
// takes, in a folder of 50,000 files, in 100 folders of 100 files, and where each call on a file takes 200
// ms.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QCoreApplication>
#include <QTest>
#include <QTreeView>
#include <filesystem>
#include <fstream>

#include "bench/forms/surroundings.h"
#include "bench/forms/turns.h"
#include "search/forms/frm_find.h"
#include "shellint/inotify_watch.h"

namespace tarnel::bench {
namespace {

/// Answers after 200 ms once it is told to.
class SlowFiles : public PosixFiles {
 public:
  bool isSlow = false;

  std::optional<FileStat> Stat(const Path& path, Links links) override {
    Wait();
    return PosixFiles::Stat(path, links);
  }
  std::unique_ptr<File> OpenToRead(const Path& path) override {
    Wait();
    return PosixFiles::OpenToRead(path);
  }
  std::vector<FolderEntry> List(const Path& folder) override {
    Wait();
    return PosixFiles::List(folder);
  }

 private:
  void Wait() const {
    if (isSlow) usleep(200'000);
  }
};

class Ground {
 public:
  Ground(int folders, int filesEach) {
    std::string where = std::filesystem::temp_directory_path() / "tarnel-bench-XXXXXX";
    m_where = mkdtemp(where.data());
    for (int i = 0; i < folders; ++i) {
      const Path folder = m_where / ("f" + std::to_string(i));
      std::filesystem::create_directory(folder);
      for (int j = 0; j < filesEach; ++j)
        std::ofstream(folder / (std::to_string(j) + ".png"))
            << std::string(400, static_cast<char>('a' + j % 26));
    }
  }
  Ground(const Ground&) = delete;
  Ground& operator=(const Ground&) = delete;
  ~Ground() { std::filesystem::remove_all(m_where); }

  const Path& Where() const { return m_where; }

 private:
  Path m_where;
};

void Search(benchmark::State& state, int folders, int filesEach, bool isSlow) {
  const Ground ground(folders, filesEach);
  SlowFiles files;
  SettingsFile settings(files, "/dev/null/settings.ini");
  Session session(files, settings, [](const std::string&) { return std::string(); });
  Nobody nobody;
  for (auto _ : state) {
    FrmFind form(session, nobody, {.passGate = [] { return true; }, .open = {}},
                 std::make_unique<OnePlace>(ground.Where()), std::make_unique<InotifyWatch>(), nullptr);
    form.setAttribute(Qt::WA_DeleteOnClose, false);
    form.show();
    auto* const search = form.findChild<QAbstractButton*>(QStringLiteral("Cmd_Search"));
    while (!search->isEnabled())
      QCoreApplication::processEvents();
    QTest::keyClicks(form.findChild<QWidget*>(QStringLiteral("txt_Pass")), QStringLiteral("secret"));
    form.findChild<QCheckBox*>(QStringLiteral("Chk_Subfolders"))->setChecked(true);
    files.isSlow = isSlow;
    const Turns turns;
    search->click();
    files.isSlow = false;
    state.counters["longest_turn_ms"] = turns.Longest();
  }
}

void OneFolderOf50000(benchmark::State& state) {
  Search(state, 1, 50'000, false);
}
BENCHMARK(OneFolderOf50000)->Unit(benchmark::kMillisecond)->Iterations(3);

void HundredFoldersOf100(benchmark::State& state) {
  Search(state, 100, 100, false);
}
BENCHMARK(HundredFoldersOf100)->Unit(benchmark::kMillisecond)->Iterations(3);

void SlowFolderOf10(benchmark::State& state) {
  Search(state, 1, 10, true);
}
BENCHMARK(SlowFolderOf10)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace tarnel::bench
