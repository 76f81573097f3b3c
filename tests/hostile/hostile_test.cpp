#include <gtest/gtest.h>
#include <sys/resource.h>

#include "carrier/length_field.h"
#include "tests/retrieval/retrieval_bench.h"
#include "tests/support/held_key.h"

namespace tarnel::test {
namespace {

constexpr std::string_view kContent = "what was hidden";

/// Carriers made by somebody who knows the password and means harm.
class Hostile : public testing::Test {
 protected:
  Hostile() { bench.folder.Put("outside/victim", "mine"); }

  /// A carrier with one entry of this record; true if it opens.
  bool Open(const std::string& record, const std::string& payload) {
    WriteAll(bench.carrier, Pattern(100));
    std::filesystem::remove_all(bench.target);
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.screen.script.Always("load.error", Answer::Ignore).Always("load.version", Answer::Ok);
    bench.HideRecord(record, payload);
    return bench.Load() == LoadResult::Loaded;
  }

  /// What an extraction leaves in the target: "PATH=CONTENT", "damaged", "refused", or nothing.
  std::string Extracted() {
    bench.extractScreen.script.Always("extract.name", Answer::Ignore)
        .Always("extract.error", Answer::Ignore)
        .Always("extract.damaged", Answer::Ignore);
    const ExtractResult result = bench.Extract(bench.All());
    EXPECT_EQ(result.extracted + result.damaged.size() + result.leftOut.size(), 1u);
    std::string left;
    if (std::filesystem::exists(bench.target))
      for (const auto& entry : std::filesystem::recursive_directory_iterator(bench.target))
        if (!entry.is_directory())
          left += entry.path().lexically_relative(bench.target).native() + "=" + ReadAll(entry.path());
    EXPECT_EQ(left.empty(), result.extracted == 0);
    EXPECT_EQ(ReadAll(bench.folder / "outside/victim"), "mine");
    EXPECT_EQ(Outside(), (Strings{"carrier.bin", "outside", "outside/victim"}));
    if (!left.empty()) return left;
    return result.damaged.empty() ? "refused" : "damaged";
  }

  Strings Outside() const {
    Strings names = bench.folder.Names();
    std::erase_if(names, [](const std::string& name) { return name.starts_with("out") && name[3] != 's'; });
    return names;
  }

  static std::string Payload() { return CarrierBench::Encrypt(kContent, {}); }
  static std::string Record(const std::string& name, const std::string& folder = "") {
    return "?Fnm=<" + name + ">?FlsEn=<" + std::to_string(Payload().size()) + ">?Attr=<32>?Cmpr=<0>?Fldnm=<" +
           folder + ">?CompVers=<701>";
  }

  RetrievalBench bench{100};
};

std::string Repeated(const std::string& part, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i)
    text += part;
  return text;
}

/// The form that `size` zeros are compressed to, saying of itself that it holds `declared` bytes.
std::string FormOfZeros(std::size_t size, std::size_t declared) {
  class Zeros : public ByteSource {
   public:
    explicit Zeros(std::size_t size) : m_left(size) {}
    std::size_t Read(MutableBytes into) override {
      const std::size_t count = std::min(m_left, into.size());
      std::fill_n(into.begin(), count, std::uint8_t{0});
      m_left -= count;
      return count;
    }

   private:
    std::size_t m_left;
  } zeros(size);
  CompressingSource source(zeros, static_cast<Length>(size), 9);
  std::string form(size / 500 + 100, '\0');
  form.resize(source.Read({reinterpret_cast<std::uint8_t*>(form.data()), form.size()}));
  for (std::size_t i = 0; i < 4; ++i)
    form[i] = static_cast<char>(declared >> 8 * i);
  return form;
}

long PeakKib() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

}  // namespace

TEST_F(Hostile, NamesAndFoldersLeadIntoTheTargetOrNowhere) {
  using namespace std::string_literals;
  struct Case {
    std::string name, folder, path;  ///< an empty path: refused
  };
  const std::vector<Case> cases = {
      {"a\0b"s, "", ""},
      {"\0"s, "", ""},
      {"ok", "a\0b"s, ""},
      {"ok", "..\0"s, ""},
      {std::string(256, 'n'), "", ""},
      {std::string(255, 'n'), "", std::string(255, 'n')},
      {"ok", std::string(4096, 'f'), ""},
      {"ok", Repeated("d\\", 300) + "d", Repeated("d/", 301) + "ok"},
      {"ok", Repeated("..\\", 40) + "outside", ""},
      {"victim", "..\\outside", ""},
      {"../outside/victim", "", ""},
      {"/etc/passwd", "", ""},
      {"passwd", "/etc", ""},
      {"victim", "../outside", ""},
      {"...", "", "..."},
      {"..", "....", ""},
      {"a..", "b.", "b./a.."},
      {".. ", " ", " /.. "},
      {"~", "$HOME", "$HOME/~"},
      {"-rf", "*", "*/-rf"},
      {"\n\x1b[2J", "", "\n\x1b[2J"},
      {"C:\\x", "C:", "C:/C:\\x"},
      {"..\\..\\x", "", "..\\..\\x"},  // one name: here the backslash separates nothing
      {"CON", "\\\\host\\share", ""},
      {"x", "\x81\x31S\x9d", "\\/x"},  // an escaped backslash is one folder
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(Open(Record(c.name, c.folder), Payload())) << c.folder << " " << c.name;
    const std::string expected = c.path.empty() ? "refused" : c.path + "=" + std::string(kContent);
    EXPECT_EQ(Extracted(), expected) << c.folder << " " << c.name;
  }
}

TEST_F(Hostile, EscapesThatNobodyWroteAreTakenAsTheyStand) {
  const std::vector<std::pair<char, std::string>> cases = {
      {'\x81', "0l"},      // a slash
      {'\x81', "0k0k"},    // ".."
      {'\x81', "0k0k0l"},  // "../"
      {'\x81', "00"},      // a zero byte
      {'\x90', "0l"},      // a slash as a raw byte
      {'\x90', "3"},       // half a byte
      {'\x81', ""},        // nothing at all
      {'\x81', "\x81"},    // a run in a run
      {'\x8D', "00"},      // two digits where three belong
      {'\x8D', "DW0"},     // half a surrogate pair
      {'\x8F', "----"},    // far beyond the last character
  };
  for (const auto& [open, body] : cases) {
    const std::string stored = open + body + '\x9D';
    std::string plain;
    for (const char c : stored)
      plain += static_cast<unsigned char>(c) < 0x80 ? std::string{c} : std::string{'\xC2', c};
    ASSERT_TRUE(Open(Record(stored, "a\\" + stored), Payload()));
    EXPECT_EQ(Extracted(), "a/" + plain + "/" + plain + "=" + std::string(kContent)) << body;
  }
}

TEST_F(Hostile, RecordsThatLieGiveTheRightBytesOrNone) {
  const std::string right = "a=" + std::string(kContent);
  const std::string good = Record("a");
  const auto without = [&good](const std::string& key) {
    std::string record = good;
    const std::size_t at = record.find(key);
    return record.erase(at, record.find('>', at) + 1 - at);
  };
  struct Case {
    std::string record, left;  ///< nothing left: the entry doesn't open at all
  };
  const std::vector<Case> cases = {
      {without("?FlsEn=<"), right},
      {without("?Fldnm=<"), right},
      {without("?Attr=<"), right},
      {without("?Cmpr=<"), "damaged"},
      {without("?Fnm=<"), ""},
      {without("?CompVers=<"), ""},
      {"?Fnm=<>" + good, ""},
      {"?CompVers=<700>" + good, ""},
      {"?FlsEn=<0>" + good, ""},
      {"?FlsEn=<-1>" + good, ""},
      {"?FlsEn=<1e999>" + good, ""},
      {"?FlsEn=<4294967343>" + good, ""},
      {"?FlsEn=<&HFFFFFFFFFFFFFFFFF>" + good, ""},
      {good + good, right},
      {good + "?Fnm=<b>?Fldnm=<..>?Cmpr=<9>", right},
      {"?Fnm=<a>?Fnm=<../b>" + good, right},
      {"?Cmpr=<00>" + good, "damaged"},
      {"?Start=<1>?Size=<10>?CarrierFile=</etc/passwd>" + good, right},
      {"?Start=<-9223372036854775808>?Size=<9223372036854775807>" + good, right},
      {"?Algorithm=<DES>?Passwort=<x>" + good, right},
      {"?Mode=<7777777777777777777777>?Attr=<1e308>" + good, right},
      {"?Fls=<99999999999999999999>" + good, ""},
      {good + "?Unclosed=<", right},
      {"noise without a tag " + good, right},
  };
  for (const Case& c : cases) {
    const bool isOpen = Open(c.record, Payload());
    EXPECT_EQ(isOpen ? Extracted() : "", c.left) << c.record;
  }
}

TEST_F(Hostile, NothingGetsThroughALinkThatAppearsUnderTheFilesName) {
  bench.Hide({"a", std::string(kContent)}).Load();
  ASSERT_EQ(bench.Extract(bench.All()).extracted, 1u);
  const std::size_t operations = bench.files.Count();
  for (std::size_t k = 1; k <= operations; ++k) {
    std::filesystem::remove_all(bench.target);
    std::filesystem::create_directory(bench.target);
    FaultyFiles files(bench.posix);
    files.before = [&](const Operation&) {
      if (files.Count() == k && !std::filesystem::exists(bench.target / "a"))
        std::filesystem::create_symlink(bench.folder / "outside/victim", bench.target / "a");
    };
    bench.extractScreen.script.Always("extract.error", Answer::Abort)
        .Always("extract.name", Answer::Abort)
        .Always("extract.overwrite", Answer::Yes);
    bench.ExtractThrough(files, bench.extractScreen);
    EXPECT_EQ(ReadAll(bench.folder / "outside/victim"), "mine") << "at operation " << k;
  }
}

TEST_F(Hostile, ABombStopsAtTheSizeThatItDeclares) {
  constexpr std::size_t kSize = std::size_t{256} << 20U;
  const std::string bomb = CarrierBench::Encrypt(FormOfZeros(kSize, 10), {});
  const long before = PeakKib();
  const std::string record = "?Fnm=<a>?Cmpr=<9>?CompVers=<701>";
  for (const std::string& payload :
       {bomb, CarrierBench::Encrypt(FormOfZeros(100, 0x7FFFFFFF), {}),
        CarrierBench::Encrypt(FormOfZeros(100, 0xFFFFFFFF), {}), CarrierBench::Encrypt("\xFF", {})}) {
    ASSERT_TRUE(Open(record, payload));
    EXPECT_EQ(Extracted(), "damaged");
  }
  EXPECT_LT(PeakKib() - before, 64 * 1024);
}

TEST_F(Hostile, ABombThatTellsTheTruthLeavesNothingOnAFullDisk) {
  const std::string record = "?Fnm=<a>?Cmpr=<9>?CompVers=<701>";
  constexpr std::size_t kSize = std::size_t{64} << 20U;
  ASSERT_TRUE(Open(record, CarrierBench::Encrypt(FormOfZeros(kSize, kSize), {})));
  bench.files.LimitSpace(1 << 20);
  EXPECT_EQ(Extracted(), "refused");
  EXPECT_EQ(Last(bench.extractScreen.script.Asked()).cause.value().Number(), ErrorNumber::DiskFull);
}

TEST_F(Hostile, ARecordBeyondTheLimitIsNeitherWrittenNorRead) {
  const std::string record = Record("a") + "?Title=<" + std::string(kRecordLimit, 't') + ">";
  EXPECT_THROW(SealEntry(record, 1, Algorithm::Rijndael256, HeldKey("secret"), bench.secondKey), Error);
  const std::string text = CipherEncryptString(Algorithm::Rijndael256, record, TextForm::Base64,
                                               HeldKey("secret"), bench.secondKey);
  bench.Append(Payload() + text + PackLengthField(static_cast<Length>(Payload().size())) +
               PackLengthField(static_cast<Length>(text.size())));
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  EXPECT_EQ(bench.Hide({"b"}).Load(), LoadResult::Loaded) << "its neighbours are read";
  EXPECT_EQ(bench.Names(), Strings{"b"});
}

}  // namespace tarnel::test
