#include "carrier/load_hideout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/attempt.h"
#include "carrier/companions.h"
#include "carrier/length_field.h"
#include "crypto/base64.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"
#include "tests/support/held_key.h"

namespace tarnel::test {

namespace {

using Reload = LoadRequest::Reload;

const Under mine{"secret"}, theirs{"other"};

/// mine and theirs in turn, three files each; the newest is one of theirs.
struct Interleaved : CarrierBench {
  Interleaved() {
    for (const std::string number : {"1", "2", "3"}) {
      Hide({.name = "mine" + number, .title = "Title " + number}, mine);
      Hide({"theirs" + number}, theirs);
    }
  }
};

const Strings mineNewestFirst{"mine3", "mine2", "mine1"}, theirsNewestFirst{"theirs3", "theirs2", "theirs1"};

std::ptrdiff_t TriesShown(const CarrierBench& bench) {
  const Strings& shown = bench.screen.script.Transcript();
  return std::count_if(shown.begin(), shown.end(), [](auto& line) { return line.starts_with("try "); });
}

}  // namespace

TEST(LoadHideout, ListsTheEntriesOfOneKeyNewestFirst) {
  Interleaved bench;
  ASSERT_EQ(bench.Load(mine), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), mineNewestFirst);
  EXPECT_EQ(Last(bench.screen.script.Transcript()), "loaded Title 3 3")
      << "the newest entry names the hideout";
  EXPECT_EQ(bench.current.CurrentCarrierPath, bench.carrier);
  EXPECT_EQ(bench.current.CurrentCarrierName, "carrier.bin");
  EXPECT_EQ(bench.current.CurrentHideoutTitle, "Title 3");
  EXPECT_TRUE(bench.current.CurrentPassword == HeldKey("secret"));
}

TEST(LoadHideout, ReadsTheExampleOfTheFormatPageForEver) {
  CarrierBench bench(0);
  bench.Append("body" + Base64Decode("AAECAwQFBgcICQoLDA0OD6cNd1ggjtUd7xhX+BqkmqcTqxUsRQ==") +
               "ICEiIyQlJieUNV4mdiZ5S+H6DVr3gxLTv9CHHIG6Twwa2qd552tf+DWzl3MO5SiZaqqAThJlAQSl\r\n"
               "gO5UvzbgZWRfmGWClMmLIF70lJoangtDLSQ233VOdGj2d8Ts196KKMif+dEtzYo+Q3157phJ0NQl\r\n"
               "6TIjm0hEC4ISCaGlC82E1ypsheFFhuZ52TX1+WZ2p2wIMUk8UwDotNgF3yJKcdttsuY+RYcMetGU\r\n"
               "h2HKIROVv0s/ah6a01o9LXVBHI+Wc8l0CvdfDJ1vQnIdGseZSAEmUG4="
               "MDEyMzQ1Njc1yhIn8aj1vW3uSy0AHSyNDZWhDt0K"
               "QEFCQ0RFRkessMifQ7hvkrOYvkiZ6XOL4cDRQxwY");
  ASSERT_EQ(bench.Size(), 411);
  ASSERT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
  ASSERT_EQ(bench.Names(), Strings{"a>b.txt"});
  const MirrorRow& row = bench.catalogue.Rows()[0];
  EXPECT_EQ(row.Field(tag::kSeal), "8ed51def1857f81aa49aa713ab152c45");
  EXPECT_EQ(bench.ContentOf(row), "hello");
}

TEST(LoadHideout, ReplacesAnOpenHideoutByTheseRules) {
  const struct {
    Under open, wanted;
    Reload reload;
    std::optional<Answer> answer;  // of the reload question, which comes only here
    LoadResult result;
    Strings names;
  } cases[] = {
      {mine, mine, Reload::Ask, Answer::No, LoadResult::KeptOpen, mineNewestFirst},
      {mine, mine, Reload::Ask, Answer::Yes, LoadResult::Loaded, mineNewestFirst},
      {mine, mine, Reload::Forced, {}, LoadResult::Loaded, mineNewestFirst},
      {mine, theirs, Reload::Ask, {}, LoadResult::Loaded, theirsNewestFirst},
      {mine, theirs, Reload::Forced, {}, LoadResult::Loaded, theirsNewestFirst},
      {mine, {"secret", Algorithm::Des}, Reload::Ask, {}, LoadResult::NotFound, mineNewestFirst},
      {mine, {"wrong"}, Reload::Forced, {}, LoadResult::NotFound, mineNewestFirst},
  };
  for (const auto& c : cases) {
    Interleaved bench;
    ASSERT_EQ(bench.Load(c.open), LoadResult::Loaded);
    const TreeNode* const before = bench.catalogue.FindRoot(bench.carrier);
    if (c.answer) bench.screen.script.Expect("load.reload", *c.answer);
    bench.guards.TreeClickBlocked = true;
    EXPECT_EQ(bench.Load(c.wanted, c.reload), c.result);
    EXPECT_EQ(bench.Names(), c.names);
    EXPECT_EQ(bench.catalogue.Roots().size(), 1u);
    EXPECT_TRUE(c.result == LoadResult::Loaded || bench.catalogue.FindRoot(bench.carrier) == before);
    EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked);
  }
}

TEST(LoadHideout, ShutsTheGateAtAnotherFormatVersion) {
  for (const bool olderFits : {false, true}) {
    CarrierBench bench(1000);
    const std::string payload = CarrierBench::Encrypt("x", mine);
    std::string record(CarrierBench::RecordOf({"new.txt"}, payload.size()));
    record.replace(record.find("?CompVers=<701>"), 15, "?CompVers=<800>");
    bench.HideRecord(record, payload, mine);
    if (olderFits) bench.Hide({"a.txt"}, mine);
    bench.screen.script.Expect("load.version", Answer::Ok);
    EXPECT_EQ(bench.Load(mine), olderFits ? LoadResult::Loaded : LoadResult::NotFound);
    EXPECT_EQ(bench.Names(), olderFits ? Strings{"a.txt"} : Strings{});
    EXPECT_EQ(bench.screen.script.Asked().at(0).text,
              "This carrier file was created with version: 800. This format is not compatible with current "
              "version.");
  }
}

TEST(LoadHideout, SaysWhatIsDamagedAndShowsTheRest) {
  const std::string fits = "?Fls=<4>?FlsEn=<36>?Cmpr=<0>?CompVers=<701>",
                    part = "?FlsEn=<36>?Cmpr=<0>?CompVers=<701>";
  const auto tag = [](const char* name, std::size_t length) { return name + std::string(length, 'n') + ">"; };
  const auto lengths = [](const std::string& stored) {
    return std::pair(
        "?Fnm=<n>?Fls=<4>?FlsEn=<" + stored + ">?Cmpr=<0>?CompVers=<701>",
        Strings{"n, the entry at byte @, is damaged: the lengths stored for it contradict each other"});
  };
  const std::pair<std::string, Strings> cases[] = {
      {tag("?Fnm=<", 1024) + tag("?Fldnm=<", 4096) + fits, {}},
      {tag("?Fnm=<", 1025) + fits, {"the entry at byte @ is damaged: its name is too long"}},
      {tag("?Fnm=<", 1) + tag("?Fldnm=<", 4097) + fits,
       {"the entry at byte @ is damaged: its folder is too deep"}},
      {"?Fnm=<n>?Fls=<5>" + part,
       {"n, the entry at byte @, is damaged: its record says another size than its contents have"}},
      lengths("37"),
      lengths("0"),
      lengths("-1"),
      lengths("1e999"),
      lengths("4294967332"),  // 36 in 32 bits
      {"?Fnm=<n>?Fls=<99999999999999999999>" + part,
       {"n, the entry at byte @, is damaged: its record says another size than its contents have"}},
      {"?Fnm=<n>" + part, {}},
      {"?Fnm=<n>?Fls=<5>?FlsEn=<36>?Cmpr=<6>?CompVers=<701>", {}},
      {fits, {}}};  // nobody's
  for (const auto& [record, faults] : cases) {
    CarrierBench bench(1000);
    bench.Hide({"old"}, mine);
    Strings wanted = faults;
    for (std::string& fault : wanted)
      fault.replace(fault.find('@'), 1, std::to_string(bench.Size() + 1));
    bench.HideRecord(record, CarrierBench::Encrypt("four", mine), mine).Hide({"new"}, mine);
    EXPECT_EQ(bench.Load(mine, Reload::Ask), LoadResult::Loaded);
    EXPECT_EQ(bench.screen.faults, wanted);
    EXPECT_EQ(bench.Names().size(), faults.empty() && record != fits ? 3U : 2U) << record;
  }
}

TEST(LoadHideout, ReadsNoRecordOfMoreThanAMebibyteButItsNeighbours) {
  CarrierBench bench(1000);
  const std::string tags = "?Fnm=<n>?CompVers=<701>" + std::string(kRecordLimit * 3 / 4, 't');
  const std::string text =
      CipherEncryptString(mine.algorithm, tags, TextForm::Base64, HeldKey(mine.password), bench.secondKey);
  bench.Hide({"old"}, mine)
      .Append(text + PackLengthField(0) + PackLengthField(static_cast<Length>(text.size())));
  EXPECT_EQ(bench.Hide({"new"}, mine).Load(mine, Reload::Ask), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), (Strings{"new", "old"}));
  EXPECT_TRUE(bench.screen.faults.at(0).ends_with("its record is too long"));
}

TEST(LoadHideout, TellsWhereTheChainEndsAndNotesAHundredFaultsAtMost) {
  CarrierBench bench(1000);
  const std::string payload = CarrierBench::Encrypt("four", mine);
  bench.HideRecord("?Fnm=<n>?FlsEn=<99>?CompVers=<701>", payload, mine);  // and no entry before it
  for (int i = 0; i < 102; ++i)
    bench.HideRecord("?Fnm=<n>?Fls=<5>?Cmpr=<0>?CompVers=<701>", payload, mine);
  EXPECT_EQ(bench.Hide({"new"}, mine).Load(mine, Reload::Ask), LoadResult::Loaded);
  ASSERT_EQ(bench.screen.faults.size(), 102U);
  EXPECT_EQ(bench.screen.faults.at(100), "2 further entries are damaged");
  EXPECT_TRUE(bench.screen.faults.at(101).starts_with("the chain of entries is broken at byte 1"));
}

TEST(LoadHideout, ListsFilesOfFoldersThatAreTooManyInTheFolderAbove) {
  CarrierBench bench(1000);
  std::string levels;
  for (int i = 0; i < 2046; ++i)
    levels += "\\d";
  bench.Hide({.name = "too deep", .folder = "last" + levels}).Hide({.name = "too many", .folder = "other"});
  for (int i = 0; i < 49; ++i)
    bench.Hide({.name = "f", .folder = std::to_string(i) + levels});
  bench.Hide({.name = "a", .folder = "a\\"});
  ASSERT_EQ(bench.Load(mine, Reload::Ask), LoadResult::Loaded);
  EXPECT_EQ(bench.screen.faults, Strings{"there are more folders than a tree shows: it lists the files of "
                                         "some in a folder above"});
  const std::vector<MirrorRow>& rows = bench.catalogue.Rows();
  EXPECT_EQ(rows.at(0).ShownFolder(), "a");
  EXPECT_EQ(rows.at(1).ShownFolder(), rows.at(1).Folder());
  EXPECT_TRUE(rows.at(50).ShownFolder().empty());
  EXPECT_EQ(rows.at(50).Folder(), "other");
  EXPECT_EQ(rows.at(51).Folder(), "last" + levels) << "it is extracted into its own folder";
  EXPECT_TRUE(rows.at(51).ShownFolder().empty());
  bench.screen.faults.clear();
  bench.catalogue.RemoveCarrier(bench.carrier);
  bench.CutTo(1000);
  EXPECT_EQ(bench.Hide({.name = "f", .folder = "a\\b\\"}).Load(mine, Reload::Ask), LoadResult::Loaded);
  EXPECT_EQ(bench.screen.faults, Strings{});
}

TEST(LoadHideout, AbortedAtAnyYieldClosesWhatItHadBegunToRead) {
  for (std::size_t n = 1; n <= 7; ++n) {
    Interleaved bench;
    bench.Load(theirs);
    const std::size_t already = bench.screen.script.Yields();
    bench.screen.script.onYield = [&](std::size_t yield) {
      bench.guards.AbortReadingFlag = yield >= already + n;
    };
    const bool hasBegun = n > 2;  // the first entry that fits is the second
    EXPECT_EQ(bench.Load(mine), hasBegun ? LoadResult::Aborted : LoadResult::NotFound) << n;
    EXPECT_EQ(bench.Names(), hasBegun ? Strings{} : theirsNewestFirst) << n;
    EXPECT_EQ(bench.catalogue.Roots().empty(), hasBegun) << n;
    EXPECT_EQ(Last(bench.screen.script.Transcript()), "gone");
    EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked);
  }
}

TEST(LoadHideout, IsTurnedAwayWhileAnotherReads) {
  CarrierBench bench(1000);
  bench.Hide({"a"}).guards.ReadingBusy = true;
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  EXPECT_TRUE(bench.guards.ReadingBusy) << "it is the other's";
}

TEST(LoadHideout, AnswersErrorsAtEveryFileOperation) {
  Interleaved bench;
  bench.Hide({"very long", std::string(6000, 'x'), std::string(4000, 'f')}, mine);
  const auto loadFrom = [&](FaultyFiles& files) {
    bench.catalogue.RemoveCarrier(bench.carrier);
    Reading reading{files, bench.catalogue, bench.guards, bench.current};
    return LoadHideout(bench.RequestFor(mine), reading, bench.screen);
  };
  FaultyFiles quiet(bench.posix);
  ASSERT_EQ(loadFrom(quiet), LoadResult::Loaded);
  const Strings all = bench.Names();
  for (std::size_t k = 1; k <= quiet.Count(); ++k) {
    for (const Answer answer : {Answer::Abort, Answer::Retry, Answer::Ignore}) {
      FaultyFiles files(bench.posix);
      files.Fail({.at = k, .number = ErrorNumber::PermissionDenied});
      bench.screen.script.Expect("load.error", answer);
      const LoadResult result = loadFrom(files);
      const Strings names = bench.Names();
      EXPECT_TRUE(std::includes(all.rbegin(), all.rend(), names.rbegin(), names.rend()));
      EXPECT_TRUE(answer != Answer::Retry || names == all) << k;
      EXPECT_TRUE(answer != Answer::Abort || result == LoadResult::NotFound) << k;
      EXPECT_TRUE(answer != Answer::Ignore || (result == LoadResult::Loaded) == !names.empty()) << k;
      EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked) << k;
    }
  }
}

TEST(LoadHideout, AsksInOneFixedFormAtAFileThatIsTooShort) {
  CarrierBench bench(20);
  bench.screen.script.Expect("load.error", Answer::Abort);
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  const Question& question = bench.screen.script.Asked().at(0);
  EXPECT_EQ(question.title + ": " + question.text,
            "Tarnel: Error: 63\r\n" + bench.carrier.native() +
                " is too short or its hidden part is damaged: an entry would begin before the file");
  EXPECT_EQ(question.preset, Answer::Abort);
}

TEST(LoadHideout, NeverShowsAWrongRowWhateverBitIsFlippedAndWhereverItIsCut) {
  CarrierBench bench(100);
  bench.Hide({"a.txt", "first"}).Hide({"b.txt", "second"}, theirs).Hide({"c.txt", "third"});
  bench.screen.script.Always("load.error", Answer::Ignore);
  const auto rows = [&bench] {
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.Load();
    Strings texts;
    for (const MirrorRow& row : bench.catalogue.Rows())
      texts.push_back(std::string(row.record) + " at " + std::to_string(row.start.value) + ", " +
                      std::to_string(row.size));
    return texts;
  };
  const Strings intact = rows();
  ASSERT_EQ(intact.size(), 2u);
  const auto expectNoOther = [&] {
    for (const std::string& row : rows())
      EXPECT_TRUE(row == intact.at(0) || row == intact.at(1)) << row;
  };
  for (Length position = 101; position <= bench.Size(); ++position) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      bench.FlipBit(position, bit);
      expectNoOther();
      bench.FlipBit(position, bit);
    }
  }
  bench.Append("x");
  EXPECT_EQ(rows(), Strings{}) << "a single byte behind the entries hides them";
  for (Length size = bench.Size() - 2; size >= 0; --size) {
    bench.CutTo(size);
    expectNoOther();
  }
}

TEST(ExamineChain, NamesWhatNoPlatformTakesAndEndsByCancelAndAtTheDiskOnly) {
  const struct {
    std::size_t name, folder;
    Strings faults;
  } cases[] = {{1024, 4096, {}}, {1025, 0, {"its name is too long"}}, {1, 4097, {"its folder is too deep"}}};
  for (const auto& c : cases) {
    CarrierBench bench;
    const std::string texts =
        "?Fnm=<" + std::string(c.name, 'n') + ">?Fldnm=<" + std::string(c.folder, 'f') + ">?CompVers=<701>";
    bench.HideRecord(texts, CarrierBench::Encrypt("x", {}));
    FaultyFiles files(bench.posix);
    const auto examine = [&] {
      return ExamineChain(*files.OpenToRead(bench.carrier), bench.carrier, Algorithm::Rijndael256,
                          HeldKey("secret"), bench.screen);
    };
    Strings faults;
    for (const EntryFault& entry : examine().entries)
      faults.push_back(entry.fault);
    EXPECT_EQ(faults, c.faults);
    files.Fail({.counts = [](const Operation& operation) { return operation.name == "File.ReadAt"; }});
    EXPECT_THROW(examine(), Error);
    bench.screen.script.CancelAtYield(0);
    EXPECT_THROW(examine(), Stop);
  }
}

TEST(OpenLocked, TakesTheFileThatTheNameMeansInTheEnd) {
  CarrierBench bench(10);
  const Path next = bench.folder.Put("next", "new bytes");
  FaultyFiles files(bench.posix);
  bool replaced = false;
  files.before = [&](const Operation& operation) {
    if (operation.name == "File.Lock" && !std::exchange(replaced, true))
      std::filesystem::rename(next, bench.carrier);
  };
  EXPECT_EQ(ReadFileSlice(*OpenLocked(bench.carrier, files), {1}, 100), "new bytes");
}

TEST(Companions, AreSeenEvenAsDanglingLinks) {
  CarrierBench bench(10);
  std::filesystem::create_symlink("nowhere", bench.folder / "carrier.bin.bak");
  EXPECT_EQ(LeftoversBeside(bench.carrier, bench.posix), std::vector{bench.folder / "carrier.bin.bak"});
}

TEST(TryPassword, FindsEveryOfferedAlgorithmWithinItsTries) {
  const std::pair<Algorithm, int> failedBefore[] = {{Algorithm::Rijndael256, 0}, {Algorithm::Cast5, 1},
                                                    {Algorithm::Des, 2},         {Algorithm::Blowfish, 6},
                                                    {Algorithm::Serpent256, 7},  {Algorithm::TripleDes, 8},
                                                    {Algorithm::Twofish, 9}};
  for (const auto& [algorithm, tries] : failedBefore) {
    CarrierBench bench(1000);
    bench.Hide({"a"}, {"secret", algorithm}).Hide({"x"}, {"other"}).Hide({"c"}, {"secret", algorithm});
    EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
    EXPECT_EQ(bench.Names(), (Strings{"c", "a"}))
        << "behind the first fit, entries of others are passed over";
    EXPECT_EQ(TriesShown(bench), tries);
    EXPECT_EQ(bench.current.CurrentAlgorithmId, algorithm);
    bench.Hide({"b"}, {"other"});
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.screen.script.ForgetTranscript();
    EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
    EXPECT_EQ(TriesShown(bench), 10 + tries) << "behind a newer entry it takes the second ten";
  }
}

TEST(TryPassword, FailsAfterTwentyWalksAndOnceAbortedReadsNoMoreEntries) {
  for (const bool isAborted : {false, true}) {
    CarrierBench bench(1000);
    bench.Hide({"a"}).Hide({"b"}, {"other"});
    bool blocked = true;
    bench.screen.script.onYield = [&](std::size_t) {
      bench.guards.AbortReadingFlag = isAborted;
      blocked = blocked && bench.guards.TreeClickBlocked && bench.guards.ReadingBusy;
    };
    EXPECT_EQ(bench.TryPassword(isAborted ? "secret" : "wrong"), LoadResult::NotFound);
    EXPECT_TRUE(blocked) << "reading counts as running from the key derivation on";
    EXPECT_EQ(TriesShown(bench), 20);
    EXPECT_TRUE(bench.catalogue.Roots().empty());
    EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked || bench.guards.AbortReadingFlag);
  }
}

TEST(TryPassword, OpensTheCarrierAnewOnceSomebodyHasWrittenToItOrAReadHasFailed) {
  for (const bool hasFailed : {false, true}) {
    CarrierBench bench(1000);
    FaultyFiles files(bench.posix);
    Reading reading{files, bench.catalogue, bench.guards, bench.current};
    bench.Hide({"a"}, {"secret", Algorithm::Twofish}).Hide({"x"}, theirs);
    if (hasFailed)
      files.Fail({.counts = [](const Operation& operation) { return operation.name == "File.ReadAt"; }});
    else
      bench.screen.script.onYield = [&](std::size_t yield) {
        if (yield == 12) bench.Hide({"b"}, {"secret", Algorithm::Twofish});
      };
    bench.screen.script.Always("load.error", Answer::Ignore);
    EXPECT_EQ(TryPassword(bench.carrier, HeldKey("secret"), reading, bench.screen), LoadResult::Loaded);
    EXPECT_EQ(bench.Names(), hasFailed ? Strings{"a"} : (Strings{"b", "a"}));
    const auto& record = files.Record();
    EXPECT_EQ(std::count_if(record.begin(), record.end(),
                            [](const Operation& operation) { return operation.name == "Files.OpenToRead"; }),
              2);
  }
}

TEST(TryPassword, EndsAsASuccessWhereTheOpenHideoutIsKept) {
  CarrierBench bench(1000);
  bench.Hide({"a"}).Load();
  bench.screen.script.Expect("load.reload", Answer::No);
  EXPECT_EQ(bench.TryPassword("secret"), LoadResult::KeptOpen);
}

TEST(NewHideout, IsRefusedWhereItsCarrierIsMissingOrItsTextsWouldBreakTags) {
  CarrierBench bench(10);
  const std::pair<Path, std::optional<NewHideoutFault>> cases[] = {
      {bench.folder / "missing", NewHideoutFault::CarrierMissing},
      {bench.folder.Where(), NewHideoutFault::CarrierMissing},
      {bench.carrier, std::nullopt}};
  for (const auto& [carrier, fault] : cases)
    EXPECT_EQ(CheckNewHideout(carrier, Secret("p"), Secret("p"), " t", bench.posix), fault);
  std::string title, password;
  for (int code = 1; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (TitleRefuses(c)) title += c;
    if (NewPasswordRefuses(c)) password += c;
  }
  EXPECT_EQ(title, "/<>\\");
  EXPECT_EQ(password, "<>");
}

}  // namespace tarnel::test
