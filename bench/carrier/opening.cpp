// How long it takes to open a hideout of many hidden files, and to see that a password opens none of them.
// Key derivation is left out: it happens once, before the measuring.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "carrier/open_hideout.h"
#include "carrier/record.h"
#include "crypto/cipher.h"
#include "crypto/keys.h"

namespace tarnel {
namespace {

const Key kRight(Secret("right"));
const Key kWrong(Secret("wrong"));

class SilentScreen : public OpeningScreen {
 public:
  Answer Ask(const Question& question) override { return SafeAnswer(question.buttons); }
  void Yield() override {}
  bool CancelRequested() const override { return false; }
  void ShowReading(Length /*passed*/, Length /*size*/) override {}
  void HideoutLoaded(TreeNode& /*root*/, std::size_t /*files*/) override {}
  void HideoutGone() override {}
  void ShowTry(int /*number*/) override {}
};

std::string Entry(std::size_t number) {
  RecordFields fields;
  fields.name.assign("file " + std::to_string(number) + ".txt");
  const std::string payload(7 + kFileCipherOverhead, 'p');
  fields.plainSize = "7";
  fields.storedSize = std::to_string(payload.size());
  fields.attributes = "32";
  fields.date = "01/02/26 12:00:00";
  fields.compressed = "0";
  fields.folder.assign("folder " + std::to_string(number % 100));
  fields.title = "Benchmark";
  const WipedText record = BuildRecord(fields, RecordWriter::Hide);
  std::string secondKey;
  return payload + SealEntry({record.data(), record.size()}, static_cast<Length>(payload.size()),
                             Algorithm::Rijndael256, kRight, secondKey);
}

/// A carrier of so many entries, removed at the end of the program.
class Carrier {
 public:
  explicit Carrier(std::size_t entries)
      : m_path(std::filesystem::temp_directory_path() / ("opening-bench-" + std::to_string(getpid()))) {
    std::ofstream file(m_path, std::ios::binary);
    file << std::string(100'000, 'c');
    for (std::size_t i = 0; i < entries; ++i)
      file << Entry(i);
  }
  ~Carrier() {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
  }
  Carrier(const Carrier&) = delete;
  Carrier& operator=(const Carrier&) = delete;

  const Path& Where() const { return m_path; }

 private:
  Path m_path;
};

void Open(benchmark::State& state, const Key& password, std::size_t expected) {
  static const Carrier carrier(10'000);
  password.Prepare([] {});
  for (auto _ : state) {
    PosixFiles files;
    Catalogue catalogue;
    ReadingGuards guards;
    CurrentHideout current;
    Reading reading{files, catalogue, guards, current};
    SilentScreen screen;
    TryPassword(carrier.Where(), password, reading, screen);
    if (catalogue.Rows().size() != expected) state.SkipWithError("wrong number of rows");
  }
}

void OpenTenThousandEntries(benchmark::State& state) {
  Open(state, kRight, 10'000);
}
BENCHMARK(OpenTenThousandEntries)->Unit(benchmark::kMillisecond);

void WrongPasswordOnTenThousandEntries(benchmark::State& state) {
  Open(state, kWrong, 0);
}
BENCHMARK(WrongPasswordOnTenThousandEntries)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnel
