// The wizard that hides: how long it takes until a folder of 20,000 files is listed, and the longest time
// between two turns of the event loop while that happens and while 1 GiB is hidden.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCoreApplication>
#include <filesystem>
#include <fstream>

#include "bench/forms/surroundings.h"
#include "bench/forms/turns.h"
#include "carrier/open_hideout.h"
#include "hiding/forms/frm_hide.h"
#include "shellint/inotify_watch.h"

namespace tarnel::bench {
namespace {

constexpr int kFiles = 20'000;

/// A folder that goes at the end, with a carrier beside it.
class Ground {
 public:
  Ground() : m_where(std::filesystem::temp_directory_path() / ("hide-bench-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(m_where / "files");
    std::ofstream(m_where / "carrier.bin") << std::string(1000, 'c');
    Reading reading = session.MakeReading();
    CreateHideout(m_where / "carrier.bin", Key(Secret("secret")), "Title", Algorithm::Rijndael256, reading);
  }
  ~Ground() { std::filesystem::remove_all(m_where); }

  void Put(const std::string& name, std::size_t mebibytes) {
    std::ofstream file(m_where / "files" / name, std::ios::binary);
    const std::string block(1 << 20, 'x');
    for (std::size_t i = 0; i < mebibytes; ++i)
      file << block;
  }

  std::unique_ptr<FrmHide> Form() {
    return std::make_unique<FrmHide>(
        session, nobody, [](const Path&) {}, std::make_unique<OnePlace>(m_where / "files"),
        std::make_unique<InotifyWatch>(), nullptr);
  }

 private:
  Path m_where;
  PosixFiles m_files;
  SettingsFile m_settings{m_files, "/dev/null/settings.ini"};

 public:
  Nobody nobody;
  Session session{m_files, m_settings, [](const std::string&) { return std::string(); }};
};

void WaitForList(FrmHide& form) {
  while (!form.findChild<QAbstractButton*>(QStringLiteral("Cmd_Hide"))->isEnabled())
    QCoreApplication::processEvents();
}

void List20000Files(benchmark::State& state) {
  Ground ground;
  for (int i = 0; i < kFiles; ++i)
    ground.Put(std::to_string(i) + ".txt", 0);
  for (auto _ : state) {
    const Turns turns;
    const auto form = ground.Form();
    form->show();
    WaitForList(*form);
    form->grab();
    state.counters["longest_turn_ms"] = turns.Longest();
  }
}
BENCHMARK(List20000Files)->Unit(benchmark::kMillisecond)->Iterations(3);

void Hide1GiB(benchmark::State& state) {
  Ground ground;
  ground.Put("big.bin", 1024);
  for (auto _ : state) {
    const auto form = ground.Form();
    form->show();
    WaitForList(*form);
    form->findChild<QAbstractItemView*>(QStringLiteral("ExplorerFile"))->selectAll();
    form->findChild<QAbstractButton*>(QStringLiteral("Cmd_Hide"))->click();
    const Turns turns;
    form->findChild<QAbstractButton*>(QStringLiteral("Cmd_Next"))->click();
    state.counters["longest_turn_ms"] = turns.Longest();
    state.counters["hidden"] = static_cast<double>(ground.session.catalogue.Rows().size());
  }
}
BENCHMARK(Hide1GiB)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace tarnel::bench
