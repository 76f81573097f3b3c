#include "app/carrier_check.h"

#include <gtest/gtest.h>

#include "app/session_screen.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {
namespace {

/// A session that has read a carrier with the entry "a".
class CarrierCheckBench : public CarrierBench {
 public:
  CarrierCheckBench() {
    Hide({"a"});
    LoadHideout(RequestFor({}), sessionReading, reader);
  }

  /// Both steps, as a flow takes them.
  CarrierCheck Check() {
    const CarrierCheck look = LookAtCarrier(session, reader);
    return look == CarrierCheck::ReadAgain ? ReadCarrierAgain(session, reader) : look;
  }
  std::string Names() {
    std::string names;
    for (const MirrorRow& row : session.catalogue.Rows())
      names += row.Name();
    return names;
  }

  FaultyFiles files{posix};
  SettingsFile settings{posix, folder / "settings.ini"};
  Session session{files, settings, [](const std::string&) { return std::string(); }};
  Reading sessionReading = session.MakeReading();
  Scripted<> person;
  const bool isCancelled = false;
  struct Reader : SessionScreen<ReadingScreen> {
    using SessionScreen::SessionScreen;
    void ShowReading(Length, Length) override {}
  } reader{session, person, isCancelled};
};

void Replace(const Path& carrier) {
  const auto time = std::filesystem::last_write_time(carrier);
  std::filesystem::copy_file(carrier, carrier.parent_path() / "new");
  std::filesystem::rename(carrier.parent_path() / "new", carrier);
  std::filesystem::last_write_time(carrier, time);
}

TEST(CarrierCheck, NoticesWhateverIsDoneToTheCarrierAndReadsItAgainAtAYes) {
  using Bench = CarrierCheckBench;
  constexpr auto yes = Answer::Yes;
  constexpr auto asRead = CarrierCheck::AsRead;
  constexpr auto again = CarrierCheck::ReadAgain;
  constexpr auto gaveUp = CarrierCheck::GaveUp;
  struct Case {
    const char* what;
    void (*before)(Bench&);
    std::vector<std::pair<const char*, Answer>> asked;
    CarrierCheck check;
    const char* names;
  };
  const Case cases[] = {
      {"nothing", [](Bench&) {}, {}, asRead, "a"},
      {"an entry", [](Bench& bench) { bench.Hide({"b"}); }, {{"carrier.changed", yes}}, again, "ba"},
      {"refused", [](Bench& bench) { bench.Hide({"b"}); }, {{"carrier.changed", Answer::No}}, gaveUp, "a"},
      {"another file of the same bytes and times",
       [](Bench& bench) { Replace(bench.carrier); },
       {{"carrier.changed", yes}},
       again,
       "a"},
      {"cut",
       [](Bench& bench) { bench.CutTo(900); },
       {{"carrier.changed", yes}, {"carrier.emptied", Answer::Ok}},
       again,
       ""},
      {"damaged",
       [](Bench& bench) { bench.FlipBit(bench.Size() - 100, 0); },
       {{"carrier.changed", yes}, {"load.damage", Answer::Ok}},
       gaveUp,
       "a"},
      {"gone",
       [](Bench& bench) { std::filesystem::remove(bench.carrier); },
       {{"carrier.error", Answer::Retry}, {"carrier.error", Answer::Ignore}},
       gaveUp,
       "a"},
      {"not to be read again",
       [](Bench& bench) {
         bench.Hide({"b"});
         bench.files.Fail({.at = 2});
       },
       {{"carrier.changed", yes}, {"load.error", Answer::Ignore}},
       gaveUp,
       "a"},
      {"stopped",
       [](Bench& bench) {
         bench.Hide({"b"});
         bench.person.script.onYield = [&bench](std::size_t) {
           bench.session.guards.AbortReadingFlag = true;
         };
       },
       {{"carrier.changed", yes}},
       gaveUp,
       "a"},
      {"our own change of the mode",
       [](Bench& bench) {
         bench.posix.SetMode(bench.carrier, 0400);
         bench.session.CarrierKeptItsBytes();
       },
       {},
       asRead,
       "a"},
      {"another file while we worked",
       [](Bench& bench) {
         Replace(bench.carrier);
         bench.session.CarrierKeptItsBytes();
       },
       {{"carrier.changed", yes}},
       again,
       "a"},
      {"as many bytes of another time while we worked",
       [](Bench& bench) {
         std::filesystem::last_write_time(bench.carrier, {});
         bench.session.CarrierKeptItsBytes();
       },
       {{"carrier.changed", yes}},
       again,
       "a"},
      {"others' bytes while we worked",
       [](Bench& bench) {
         bench.Hide({"b"});
         bench.session.CarrierKeptItsBytes();
       },
       {{"carrier.changed", yes}},
       again,
       "ba"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    Bench bench;
    ASSERT_EQ(bench.Names(), "a");
    each.before(bench);
    for (const auto& [id, answer] : each.asked)
      bench.person.script.Expect(id, answer);
    EXPECT_EQ(bench.Check(), each.check);
    EXPECT_EQ(bench.Names(), each.names);
    EXPECT_FALSE(bench.session.guards.AbortReadingFlag);
    EXPECT_NE(bench.session.SelectedNode(), nullptr);
    if (each.check == again) {
      EXPECT_EQ(bench.Check(), asRead) << "it is known now";
    }
  }
}

}  // namespace
}  // namespace tarnel::test
