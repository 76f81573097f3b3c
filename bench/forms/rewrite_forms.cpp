// The windows that take out of a carrier of 1 GiB or rewrite it: the longest time between two turns of the
// event loop while a file in it is updated, extracted or deleted, and while its password is changed.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QLineEdit>
#include <QTest>
#include <filesystem>
#include <fstream>

#include "app/session_screen.h"
#include "bench/forms/turns.h"
#include "carrier/open_hideout.h"
#include "formkit/dialogue_in_windows.h"
#include "hiding/run_hide.h"
#include "retrieval/forms/frm_delete.h"
#include "retrieval/forms/frm_extracting.h"
#include "retrieval/forms/frm_password.h"
#include "retrieval/forms/frm_view.h"

namespace tarnel::bench {
namespace {

constexpr Length kMebibytes = 1024;

/// Yields as the program does, and lets everything be done.
class Willing : public DialogueInWindows {
 public:
  Answer Ask(const Question& question) override {
    return question.buttons == Buttons::YesNo ? Answer::Yes : SafeAnswer(question.buttons);
  }
};

class Hiding : public SessionScreen<HideScreen> {
 public:
  using SessionScreen::SessionScreen;
  void ShowStage(HideStage) override {}
  void ShowFile(std::size_t, std::size_t, const Path&, Length) override {}
  void FileDone(std::size_t) override {}
  void ShowProgress(Length, Length) override {}
  void ShowBackup(Length, Length) override {}
  void ShowOriginal(OriginalStep, const Path&, std::size_t, std::size_t) override {}
  void ShowReading(Length, Length) override {}
};

/// A carrier with one hidden file of `inFile` mebibytes that fills it up to 1 GiB; gone at the end.
class Ground {
 public:
  explicit Ground(Length inFile)
      : m_where(std::filesystem::temp_directory_path() / ("rewrite-bench-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(m_where);
    Put("carrier.bin", kMebibytes - inFile);
    Put("a.txt", inFile);
    Reading reading = session.MakeReading();
    CreateHideout(m_where / "carrier.bin", Key(Secret("secret")), "Title", Algorithm::Rijndael256, reading);
    Hiding screen(session, person, m_isCancelled);
    HideRequest request;
    const FileStat stat = *m_files.Stat(m_where / "a.txt");
    request.rows = {{.source = m_where / "a.txt", .name = "a.txt", .folder = {}, .size = stat.size}};
    request.totalBytes = stat.size;
    RunHide(request, reading, screen);
  }
  ~Ground() { std::filesystem::remove_all(m_where); }

  const Path& Where() const { return m_where; }

 private:
  void Put(const std::string& name, Length mebibytes) {
    std::ofstream file(m_where / name, std::ios::binary);
    const std::string block(1 << 20, 'x');
    for (Length i = 0; i < mebibytes; ++i)
      file << block;
    file << "end";
  }

  Path m_where;
  PosixFiles m_files;
  SettingsFile m_settings{m_files, "/dev/null/settings.ini"};
  bool m_isCancelled = false;

 public:
  Willing person;
  Session session{m_files, m_settings, [](const std::string&) { return std::string(); }};
};

QAbstractButton* Button(QWidget& form, const char* name) {
  return form.findChild<QAbstractButton*>(QLatin1String(name));
}

void UpdateIn1GiB(benchmark::State& state) {
  Ground ground(state.range(0));
  for (auto _ : state) {
    ground.session.previewParcel = ParcelOf(ground.session.catalogue.Rows().at(0));
    FrmView form(
        ground.session, ground.person, [](const Path&) {}, nullptr);
    {
      const Turns turns;
      form.show();
      while (!Button(form, "Cmd_Ok")->isEnabled())
        QCoreApplication::processEvents();
      state.counters["view_turn_ms"] = turns.Longest();
    }
    {
      const Turns turns;
      Button(form, "Cmd_Update")->click();
      state.counters["update_turn_ms"] = turns.Longest();
    }
    const Turns turns;
    Button(form, "Cmd_Ok")->click();
    state.counters["leave_turn_ms"] = turns.Longest();
  }
}
BENCHMARK(UpdateIn1GiB)->Arg(1)->Arg(512)->Unit(benchmark::kMillisecond)->Iterations(1);

void ChangePasswordOf1GiB(benchmark::State& state) {
  Ground ground(state.range(0));
  for (auto _ : state) {
    FrmPassword form(ground.session, ground.person, nullptr);
    form.show();
    QTest::keyClicks(form.findChild<QLineEdit*>(QStringLiteral("txt_oldpass")), QStringLiteral("secret"));
    for (const char* const field : {"txt_newpass", "txt_confirm"})
      QTest::keyClicks(form.findChild<QLineEdit*>(QLatin1String(field)), QStringLiteral("other"));
    const Turns turns;
    Button(form, "Cmd_Ok")->click();
    state.counters["longest_turn_ms"] = turns.Longest();
    state.counters["changed"] = ground.session.current.CurrentPassword == Key(Secret("other")) ? 1 : 0;
  }
}
BENCHMARK(ChangePasswordOf1GiB)->Arg(1)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(1);

void ExtractFrom1GiB(benchmark::State& state) {
  Ground ground(state.range(0));
  std::filesystem::create_directory(ground.Where() / "out");
  ExtractRequest request;
  request.carrier = ground.session.current.CurrentCarrierPath;
  request.target = ground.Where() / "out";
  request.all = true;
  for (auto _ : state) {
    FrmExtracting form(ground.session, ground.person, request, nullptr);
    const Turns turns;
    form.exec();
    state.counters["longest_turn_ms"] = turns.Longest();
    state.counters["extracted"] = std::filesystem::exists(ground.Where() / "out/a.txt") ? 1 : 0;
  }
}
BENCHMARK(ExtractFrom1GiB)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(1);

void DeleteFrom1GiB(benchmark::State& state) {
  Ground ground(state.range(0));
  for (auto _ : state) {
    FrmDelete form(
        ground.session, ground.person,
        DeleteList({ExtractChoice{}}, ground.session.catalogue, ground.session.current.CurrentCarrierPath),
        nullptr);
    form.show();
    const Turns turns;
    Button(form, "Cmd_Delete")->click();
    state.counters["longest_turn_ms"] = turns.Longest();
    state.counters["left"] = static_cast<double>(ground.session.catalogue.Rows().size());
  }
}
BENCHMARK(DeleteFrom1GiB)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace tarnel::bench
