#include <gmock/gmock.h>

#include "carrier/chain.h"
#include "carrier/length_field.h"
#include "retrieval/mend_chain.h"
#include "retrieval/recover.h"
#include "retrieval/salvage.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

/// Three entries, the one in the middle under another password.
struct MendBench : RetrievalBench {
  MendBench() {
    for (const Under& under : {Under{}, kOther, Under{}}) {
      starts.push_back(Size() + 1);
      Hide({.name = "file" + std::to_string(starts.size()),
            .content = "content",
            .title = std::string(80, 't')},  // so that a record has more than three lines
           under);
    }
    starts.push_back(Size() + 1);
    screen.script.Always("load.error", Answer::Ignore);
  }

  Length RecordOf(std::size_t entry) const { return starts.at(entry) + 7 + kFileCipherOverhead; }
  Length TrailerOf(std::size_t entry) const { return starts.at(entry + 1) - Length{kTrailerSize}; }
  void Replace(std::size_t entry, const std::string& field, std::size_t behind = 0) {
    WriteAll(carrier, ReadAll(carrier).replace(static_cast<std::size_t>(TrailerOf(entry) - 1) + behind,
                                               field.size(), field));
  }
  /// Neither field of the trailer, or just one, can be read.
  void Spoil(std::size_t entry, std::string_view fields) {
    for (const char field : fields)
      Replace(entry, std::string(kLengthFieldSize, '!'), field == 'l' ? 0 : kLengthFieldSize);
  }
  /// So that what comes first is somebody else's, whose lengths nothing else tells.
  void LoseTheOldest() {
    const Length gone = starts[1] - starts[0];
    WriteAll(carrier, ReadAll(carrier).erase(1000, static_cast<std::size_t>(gone)));
    for (Length& start : starts)
      start -= gone;
  }
  /// From the trailer of `entry` on.
  void CutOut(std::size_t entry, std::size_t count) {
    WriteAll(carrier, ReadAll(carrier).erase(static_cast<std::size_t>(TrailerOf(entry) - 1), count));
  }
  /// Between the entries before and from `entry` on.
  void Insert(std::size_t entry, const std::string& bytes) {
    WriteAll(carrier, ReadAll(carrier).insert(static_cast<std::size_t>(starts.at(entry) - 1), bytes));
  }
  MendPlan Plan() { return PlanMending(*posix.OpenToRead(carrier), HeldKey("secret"), person); }
  bool Write(const MendPlan& plan) {
    return WriteMended(plan, *posix.OpenToRead(carrier), carrier, temporary, files, person);
  }
  /// The steps, what the hideouts then hold, and where the chain still breaks.
  std::string Mended() {
    const MendPlan plan = Plan();
    std::string told;
    for (const MendPlan::Step& step : plan.steps)
      told += "cwb"[static_cast<std::size_t>(step.kind)];
    Write(plan);
    std::filesystem::rename(temporary, carrier);
    EXPECT_TRUE(Plan().steps.empty()) << told;
    told += plan.unknown ? "? " : " ";
    EXPECT_EQ(plan.entries, ContentsUnder({}).size());
    for (const Under& under : {Under{}, kOther})
      for (const std::string& content : ContentsUnder(under))
        told += content.substr(4);
    return told;
  }

  std::vector<Length> starts;
  Scripted<> person;
};

const std::string kAll = "1=content3=content2=content";

TEST(Mend, MakesTheChainLeadToAllThatItCanLeadTo) {
  const struct {
    std::function<void(MendBench&)> harm;
    std::string result;
  } cases[] = {
      {[](MendBench&) {}, " " + kAll},
      {[](MendBench& b) { b.Append("x"); }, "c " + kAll},
      {[](MendBench& b) { b.Spoil(0, "lr"); }, "ww " + kAll},
      {[](MendBench& b) { b.Spoil(2, "lr"); }, "ww " + kAll},
      {[](MendBench& b) { b.Spoil(1, "l"); }, "w " + kAll},
      {[](MendBench& b) { b.Spoil(1, "r"); }, "w " + kAll},
      {[](MendBench& b) { b.Spoil(1, "lr"); }, "b 1=content3=content"},  // his own password mends it
      {[](MendBench& b) { b.Insert(2, std::string(5000, '\0')); }, "b " + kAll},
      {[](MendBench& b) { b.Spoil(2, "l"), b.Insert(2, std::string(5000, '\0')); }, "bw " + kAll},
      // 390 could be the length that 39 was before a character of it was altered, were the trailer before
      // whole.
      {[](MendBench& b) { b.Spoil(0, "r"), b.Insert(1, std::string(390 - 39, '\0')); }, "wb " + kAll},
      {[](MendBench& b) { b.CutOut(0, 10); }, "ww " + kAll},
      {[](MendBench& b) { b.CutOut(0, 90); }, "www 1=content3=content"},
      {[](MendBench& b) {  // behind a bridge of an earlier mending
         b.Spoil(1, "r"), b.Insert(1, std::string(100, '\0') + PackLengthField(99) + PackLengthField(1));
       },
       "w " + kAll},
      {[](MendBench& b) { b.Replace(1, PackLengthField(5)), b.Spoil(1, "r"); }, "ww " + kAll},
      {[](MendBench& b) { b.CutTo(b.TrailerOf(2) + 30); }, "ww " + kAll},
      {[](MendBench& b) {  // an entry that was torn before its trailer, and one written behind it
         b.CutTo(b.TrailerOf(1) - 1);
         b.Hide({"file4", "content"});
       },
       "b 1=content4=content2=content"},
      {[](MendBench& b) { b.Hide({"torn"}, kOther).CutTo(b.Size() - 90); }, "b " + kAll},
      // Of somebody else's record: the end of a line, and a few characters of one.
      {[](MendBench& b) { b.FlipBit(b.RecordOf(1) + 78 + 77, 0); }, " 1=content3=content"},
      {[](MendBench& b) { b.FlipBit(b.RecordOf(1) + 30, 7), b.FlipBit(b.RecordOf(1) + 40, 7); },
       " 1=content3=content"},
      {[](MendBench& b) { b.LoseTheOldest(), b.Spoil(1, "l"); }, "? 3=content"},
      {[](MendBench& b) { b.LoseTheOldest(), b.Replace(1, PackLengthField(99999)); }, "? 3=content"},
  };
  for (const auto& c : cases) {
    MendBench bench;
    c.harm(bench);
    EXPECT_EQ(bench.Mended(), c.result) << &c - cases;
  }
}

TEST(Mend, BearsOneAlteredCharacterWhereverItStandsInATrailer) {
  for (std::size_t entry = 0; entry < 3; ++entry) {
    for (Length at = 0; at < Length{kTrailerSize}; at += 3) {
      MendBench bench;
      bench.FlipBit(bench.TrailerOf(entry) + at, 0);
      const ChainFaults faults = ExamineChain(*bench.posix.OpenToRead(bench.carrier), bench.carrier,
                                              Algorithm::Rijndael256, HeldKey("secret"), bench.person);
      EXPECT_TRUE(!faults.None() || bench.Plan().steps.empty()) << "untold: " << entry << " " << at;
      EXPECT_THAT(bench.Mended(), testing::EndsWith(kAll)) << entry << " " << at;
    }
  }
}

TEST(Mend, WritesItsCarrierThroughForNobodyElseAndLeavesNoneThatFailed) {
  MendBench bench;
  bench.Spoil(1, "lr");
  MendPlan plan = bench.Plan();
  bench.Write(plan);
  EXPECT_EQ(bench.posix.Stat(bench.temporary)->mode, 0600U);
  const std::vector<Operation>& record = bench.files.Record();
  ASSERT_GE(record.size(), 2U);
  EXPECT_EQ(record.at(record.size() - 2).name + " " + record.back().name, "File.Sync File.Close");
  std::filesystem::remove(bench.temporary);
  ++plan.links;
  EXPECT_THROW(bench.Write(plan), Error);
  plan.links -= 2;
  EXPECT_THROW(bench.Write(plan), Error) << "more entries than were found";
  MendPlan large = plan;
  large.pieces.push_back({.from = {}, .length = kCarrierLimit, .written = {}});
  try {
    bench.Write(large);
    ADD_FAILURE() << "beyond 2 GiB";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::DiskFull) << "before anything is copied";
  }
  bench.person.script.CancelAtYield(0);
  EXPECT_FALSE(bench.Write(plan));
  EXPECT_TRUE(bench.Plan().cancelled);
  EXPECT_FALSE(std::filesystem::exists(bench.temporary));
}

TEST(Mend, PutsTheFreshCarrierInPlaceWithTheModeOfTheOldOneWhichItKeeps) {
  RetrievalBench bench;
  const std::string before = ReadAll(bench.carrier);
  std::filesystem::permissions(bench.carrier, std::filesystem::perms{0640});
  WriteAll(bench.temporary, "fresh", 0600);
  EXPECT_EQ(ReadAll(PutInPlace(bench.temporary, bench.carrier, bench.files)), before);
  EXPECT_EQ(ReadAll(bench.carrier), "fresh");
  EXPECT_EQ(bench.posix.Stat(bench.carrier)->mode, 0640U);
  EXPECT_EQ(bench.files.Record().back().name, "Files.SyncFolder");
}

struct SalvageBench : RetrievalBench {
  using RetrievalBench::RetrievalBench;

  class Screen : public Scripted<SalvageScreen> {
    void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
    void FileSalvaged(const Path& file) override { script.Note(file.filename()); }
  } person;

  SalvageResult Run() {
    return RunSalvage({.carrier = carrier, .password = HeldKey("secret"), .target = target}, files, person);
  }
  /// "path=contents" below the target, and "name: fault".
  Strings Salvaged() {
    const SalvageResult result = Run();
    Strings salvaged;
    for (const std::string& name : folder.Names())
      if (name.starts_with("out/") && std::filesystem::is_regular_file(folder / name))
        salvaged.push_back(name.substr(4) + "=" + ReadAll(folder / name).substr(0, 20));
    EXPECT_EQ(salvaged.size(), result.salvaged);
    for (const auto& faults : {result.damaged, result.leftOut})
      for (const EntryFault& entry : faults)
        salvaged.push_back(entry.name + ": " + entry.fault);
    return salvaged;
  }
};

TEST(Salvage, TakesOutWhateverAuthenticatesNewestFirstAndOverwritesNothing) {
  SalvageBench bench;
  bench.Hide({"a.txt", "old"}).Hide({"foreign"}, kOther);
  bench.Compressed({"a.txt", "between"}, {"secret", Algorithm::Twofish}).Append(Pattern(300));
  bench.Hide({"a.txt", "new"}).Hide({".a", "1"}).Hide({".a", "2"}).Hide({"x", "sub", "\\d\\e"});
  EXPECT_EQ(bench.Salvaged(),
            (Strings{".a=2", ".a (2)=1", "a (2).txt=between", "a (3).txt=old", "a.txt=new", "d/e/x=sub"}));
  EXPECT_EQ(bench.files.Record().back().name, "Files.SyncFileSystem");
  EXPECT_EQ(bench.Run().salvaged, 6U);
  EXPECT_EQ(ReadAll(bench.target / "a.txt") + ReadAll(bench.target / "a (4).txt"), "newnew");
}

TEST(Salvage, SaysWhatItCannotTakeOutAndMakesNoFileOfIt) {
  SalvageBench bench;
  const std::string payload = CarrierBench::Encrypt("four", {});
  const std::string rest = "?Cmpr=<0>?CompVers=<701>?Attr=<32>?Date=<11/22/26 10:00:00>";
  for (const std::string size : {"-5", "999999", "1E300"})
    bench.HideRecord("?Fnm=<n" + size + ">?FlsEn=<" + size + ">" + rest, payload);
  const Length wrong = bench.Size();
  bench.Hide({"contents"});
  const Length cut = bench.Size();
  bench.Hide({"record"}).Hide({std::string(300, 'n')}).Hide({std::string(1025, 'n')}).Hide({"whole"});
  bench.FlipBit(wrong + 20, 0);
  bench.FlipBit(cut + 12 + 32 + 60, 0);
  bench.person.script.Always("extract.error", Answer::Ignore).Always("extract.name", Answer::Ignore);
  EXPECT_THAT(bench.Salvaged(),
              testing::ElementsAre(
                  "whole=some content", ": its name is too long", ": its record is damaged",
                  "contents: its contents are damaged or were altered",
                  "n1E300: its contents are not all there", "n999999: its contents are not all there",
                  "n-5: its contents are not all there", std::string(300, 'n') + ": it was passed over"));
}

TEST(Salvage, FindsARecordAcrossTheBlocksThatItReads) {
  RetrievalBench like;
  like.Hide({"a"}).Load();
  const MirrorRow& row = like.catalogue.Rows().at(0);
  const std::size_t lines = (static_cast<std::size_t>(row.tail.length) - kTrailerSize) / 78;
  for (const std::size_t into : {0U, 1U, 77U}) {
    SalvageBench bench((std::size_t{1} << 20) + into - 78 * lines - static_cast<std::size_t>(row.size));
    EXPECT_EQ(bench.Hide({"a"}).Size() > 1 << 20, true);
    EXPECT_EQ(bench.Run().salvaged, 1U) << into;
  }
}

TEST(Salvage, EndsWhenCancelledAndCountsOnceWhatItSoughtTwice) {
  for (std::size_t yield = 0; yield < 6; ++yield) {
    SalvageBench bench;
    bench.Hide({"a"}).Hide({"b"}).Hide({"c"});
    bench.person.script.CancelAtYield(yield);
    const SalvageResult result = bench.Run();
    EXPECT_EQ(result.ending == SalvageEnding::Cancelled, result.salvaged < 3) << yield;
    EXPECT_LE(bench.person.script.Yields(), yield + 1);
  }
  SalvageBench bench;
  bench.Hide({"a"}).Hide({"b"});
  bench.files.Fail({.at = 8, .counts = Calls("File.ReadAt")});
  bench.person.script.Expect("extract.error", Answer::Retry);
  EXPECT_EQ(bench.Run().found, 2U);
}

TEST(NumberedName, PutsTheNumberBeforeTheExtensionWithinWhatAFolderTakes) {
  const std::string full(255, 'n');
  const std::pair<std::string, std::string> cases[] = {
      {"letter.txt", "letter (2).txt"},
      {"a.tar.gz", "a.tar (2).gz"},
      {".rc", ".rc (2)"},
      {"none", "none (2)"},
      {full, full.substr(4) + " (2)"},
      {full.substr(4) + ".txt", full.substr(8) + " (2).txt"}};
  for (const auto& [name, numbered] : cases)
    EXPECT_EQ(NumberedName(name, 2), numbered);
}

}  // namespace
}  // namespace tarnel::test
