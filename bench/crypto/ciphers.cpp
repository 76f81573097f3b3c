#include <benchmark/benchmark.h>
#include <botan/stream_cipher.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "crypto/cipher.h"
#include "crypto/cipher_suite.h"
#include "crypto/compression.h"
#include "crypto/file_cipher.h"
#include "crypto/keys.h"

namespace tarnel {
namespace {

const Key kKey = Key::OfLengthFields();
constexpr std::int64_t kMebibyte = 1 << 20;
constexpr std::int64_t kFileBytes = 128 * kMebibyte;

class EndlessSource : public ByteSource {
 public:
  explicit EndlessSource(std::int64_t length) : m_left(length) {}

  std::size_t Read(MutableBytes into) override {
    const auto count = static_cast<std::size_t>(std::min(m_left, static_cast<std::int64_t>(into.size())));
    m_left -= static_cast<std::int64_t>(count);
    return count;
  }

 private:
  std::int64_t m_left;
};

class NowhereSink : public ByteSink {
 public:
  void Write(Bytes bytes) override { benchmark::DoNotOptimize(bytes.data()); }
};

void EncryptFile(benchmark::State& state, Algorithm algorithm) {
  const auto workers = static_cast<std::size_t>(state.range(0));
  const WipedBytes masterKey(kMasterKeyBytes, 7);
  NowhereSink sink;
  for (auto _ : state) {
    EndlessSource source(kFileBytes);
    SealFile(*FindCipherSuite(algorithm), masterKey, {}, source, sink, workers);
  }
  state.SetBytesProcessed(state.iterations() * kFileBytes);
}

void DecryptFile(benchmark::State& state, Algorithm algorithm) {
  const auto workers = static_cast<std::size_t>(state.range(0));
  const WipedBytes masterKey(kMasterKeyBytes, 7);
  NowhereSink sink;
  for (auto _ : state) {
    EndlessSource source(kFileBytes);
    OpenFile(*FindCipherSuite(algorithm), masterKey, source, sink, workers);
  }
  state.SetBytesProcessed(state.iterations() * kFileBytes);
}

void EncryptSmallFile(benchmark::State& state, Algorithm algorithm) {
  NowhereSink sink;
  std::string second;
  for (auto _ : state) {
    EndlessSource source(1000);
    CipherEncryptFile(algorithm, source, sink, kKey, second);
  }
}

void CounterMode(benchmark::State& state, Algorithm algorithm) {
  const CipherSuite& suite = *FindCipherSuite(algorithm);
  const auto cipher = MakeCounterMode(suite);
  cipher->set_key(std::vector<std::uint8_t>(suite.keyBytes, 7));
  std::vector<std::uint8_t> piece(64 * 1024);
  for (auto _ : state)
    cipher->cipher1(piece.data(), piece.size());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(piece.size()));
}

void DecryptField(benchmark::State& state, Algorithm algorithm) {
  std::string second;
  const std::string text =
      CipherEncryptString(algorithm, std::string(40, '1'), TextForm::Base64, kKey, second);
  const std::string field = text.substr(0, 40);
  for (auto _ : state)
    benchmark::DoNotOptimize(
        CipherDecryptString(algorithm, field, TextForm::Base64, kKey, second, Cut::Allowed).size());
}

void DecryptRecord(benchmark::State& state, Algorithm algorithm) {
  std::string second;
  const std::string text =
      CipherEncryptString(algorithm, std::string(200, '1'), TextForm::Base64, kKey, second);
  for (auto _ : state)
    benchmark::DoNotOptimize(
        CipherDecryptString(algorithm, text, TextForm::Base64, kKey, second, Cut::Whole).size());
}

void RefuseForeignRecord(benchmark::State& state) {
  std::string second;
  const std::string text(400, 'x');
  for (auto _ : state)
    benchmark::DoNotOptimize(
        CipherDecryptString(Algorithm::Rijndael256, text, TextForm::Base64, kKey, second, Cut::Whole).size());
}

void DeriveKey(benchmark::State& state) {
  const Secret phrase("a pass phrase");
  for (auto _ : state) {
    Key(phrase).Prepare([] {});
  }
}

/// Half text with some order in it, half noise, in turn.
std::vector<std::uint8_t> MixedBytes(std::int64_t length) {
  constexpr std::string_view kLetters = "etaoinshrdlu \n";
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  std::uint64_t state = 1;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const std::uint64_t drawn = state >> 33;
    const bool isText = i / 100'000 % 2 == 0;
    bytes[i] =
        isText ? AsBytes(kLetters)[drawn % 7 * (i % 5) % kLetters.size()] : static_cast<std::uint8_t>(drawn);
  }
  return bytes;
}

class BufferSource : public ByteSource {
 public:
  explicit BufferSource(Bytes bytes) : m_left(bytes) {}

  std::size_t Read(MutableBytes into) override {
    const std::size_t count = std::min(into.size(), m_left.size());
    std::copy_n(m_left.begin(), count, into.begin());
    m_left = m_left.subspan(count);
    return count;
  }

 private:
  Bytes m_left;
};

void Compress(benchmark::State& state) {
  constexpr std::int64_t kLength = 32 * kMebibyte;
  const std::vector<std::uint8_t> plain = MixedBytes(kLength);
  std::vector<std::uint8_t> piece(64 * 1024);
  for (auto _ : state) {
    BufferSource source(plain);
    CompressingSource compressing(source, kLength, static_cast<int>(state.range(0)), nullptr,
                                  static_cast<std::size_t>(state.range(1)));
    while (compressing.Read(piece) != 0)
      continue;
  }
  state.SetBytesProcessed(state.iterations() * kLength);
}

const auto kBeside = static_cast<std::int64_t>(std::max<std::size_t>(WorkerLimit(), 1));

BENCHMARK(DeriveKey)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(RefuseForeignRecord);
BENCHMARK(Compress)
    ->ArgNames({"level", "workers"})
    ->ArgsProduct({{1, 6, 9}, {0, kBeside}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

const bool registered = [] {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    const auto add = [&](const char* what, void (*run)(benchmark::State&, Algorithm)) {
      return benchmark::RegisterBenchmark((what + std::string("/").append(offered.name)).c_str(), run,
                                          offered.algorithm);
    };
    for (const std::int64_t workers : {std::int64_t{0}, kBeside})
      for (auto* benchmark : {add("EncryptFile", EncryptFile), add("DecryptFile", DecryptFile)})
        benchmark->ArgName("workers")->Arg(workers)->Unit(benchmark::kMillisecond)->UseRealTime();
    add("EncryptSmallFile", EncryptSmallFile)->Unit(benchmark::kMicrosecond);
    add("CounterMode", CounterMode)->Unit(benchmark::kMicrosecond);
    add("DecryptField", DecryptField);
    add("DecryptRecord", DecryptRecord);
  }
  return true;
}();

}  // namespace
}  // namespace tarnel
