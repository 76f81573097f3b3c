#include "crypto/file_cipher.h"

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kAlone = 2 * kPiece;
constexpr std::size_t kBlock = 4 * kPiece;
constexpr std::size_t kNever = ~std::size_t{};
constexpr FileNonce kNonce = {1, 2, 3};
const WipedBytes kMasterKey(kMasterKeyBytes, 7);
const std::thread::id kCaller = std::this_thread::get_id();

struct Fault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Counts the calls that it gets on the test's thread, and throws at one of them.
class Calls {
 public:
  explicit Calls(std::string name, std::size_t faulty = kNever) : m_name(std::move(name)), m_faulty(faulty) {}

  void Next() {
    EXPECT_EQ(std::this_thread::get_id(), kCaller);
    if (m_count++ == m_faulty) throw Fault(m_name);
  }

 private:
  std::string m_name;
  std::size_t m_faulty;
  std::size_t m_count = 0;
};

class CountedSource : public MemorySource {
 public:
  CountedSource(std::string_view text, std::size_t faulty) : MemorySource(text), m_calls("source", faulty) {}

  std::size_t Read(MutableBytes into) override {
    m_calls.Next();
    return MemorySource::Read(into);
  }

 private:
  Calls m_calls;
};

class CountedSink : public MemorySink {
 public:
  explicit CountedSink(std::size_t faulty) : m_calls("sink", faulty) {}

  void Write(Bytes bytes) override {
    m_calls.Next();
    pieces.push_back(bytes.size());
    MemorySink::Write(bytes);
  }

  std::vector<std::size_t> pieces;

 private:
  Calls m_calls;
};

struct Trial {
  FileWay way;
  std::size_t faultyRead = kNever;
  std::size_t faultyWrite = kNever;
};

struct Traces {
  std::string outcome;
  std::string text;
  std::vector<std::size_t> pieces;

  bool operator==(const Traces&) const = default;
};

Traces Pass(const Trial& trial, const CipherSuite& suite, std::string_view text, std::size_t workers) {
  CountedSource source(text, trial.faultyRead);
  CountedSink sink(trial.faultyWrite);
  std::string outcome = "intact";
  try {
    if (trial.way == FileWay::Seal)
      SealFile(suite, kMasterKey, kNonce, source, sink, workers);
    else if (!OpenFile(suite, kMasterKey, source, sink, workers))
      outcome = "refused";
  } catch (const Fault& fault) {
    outcome = fault.what();
  }
  return {outcome, sink.text, sink.pieces};
}

/// With workers from the third piece on.
CipherSuite Suite(Algorithm algorithm = Algorithm::Rijndael256) {
  CipherSuite suite = *FindCipherSuite(algorithm);
  suite.bytesAlone = kAlone;
  return suite;
}

TEST(Workers, ChangeNoByteAndNoPieceOfAnyCipher) {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    const CipherSuite suite = Suite(offered.algorithm);
    for (const std::size_t length : {kAlone, kAlone + 1, kAlone + kBlock + 16, kAlone + 7 * kBlock - 15}) {
      const std::string plain = SampleText(length);
      const Traces sealed = Pass({FileWay::Seal}, suite, plain, 0);
      const Traces opened = Pass({FileWay::Open}, suite, sealed.text, 0);
      EXPECT_TRUE(opened.outcome == "intact" && opened.text == plain) << length;
      for (const std::size_t workers : {1U, 2U, 8U}) {
        EXPECT_TRUE(Pass({FileWay::Seal}, suite, plain, workers) == sealed) << length << " " << workers;
        EXPECT_TRUE(Pass({FileWay::Open}, suite, sealed.text, workers) == opened) << length << " " << workers;
      }
    }
  }
}

TEST(Workers, LeaveTheSameTracesWhereverSourceOrSinkFails) {
  const std::string plain = SampleText(kAlone + 4 * kBlock + kPiece);
  const std::string sealed = Pass({FileWay::Seal}, Suite(), plain, 0).text;
  for (const FileWay way : {FileWay::Seal, FileWay::Open})
    for (std::size_t k = 0; k < 22; ++k)
      for (const Trial& trial :
           {Trial{way, k, kNever}, Trial{way, kNever, k}, Trial{way, k, k}, Trial{way, k + 3, k}}) {
        const std::string_view text = way == FileWay::Seal ? plain : sealed;
        const Traces alone = Pass(trial, Suite(), text, 0);
        EXPECT_TRUE(Pass(trial, Suite(), text, 2) == alone) << k << " " << alone.outcome;
      }
}

TEST(Workers, RefuseAFlippedBitInAnyBlock) {
  const std::string sealed = Pass({FileWay::Seal}, Suite(), SampleText(kAlone + 6 * kBlock), 2).text;
  for (std::size_t bit = 5; bit < sealed.size() * 8; bit += kPiece * 8 + 1)
    EXPECT_EQ(Pass({FileWay::Open}, Suite(), WithFlippedBit(sealed, bit), 2).outcome, "refused") << bit;
}

TEST(WorkLine, HandsOutInOrderWhatComesInAndThrowsWhatTheWorkThrew) {
  constexpr std::size_t kSlots = 5;
  for (const std::size_t workers : {0U, 1U, 4U}) {
    std::vector<std::size_t> slots(kSlots);
    WorkLine line(workers, kSlots, [&](std::size_t worker, std::size_t item) {
      EXPECT_LE(worker, workers);
      if (item % 3 == 2) throw Fault(std::to_string(item));
      slots[item % kSlots] = item;
    });
    for (std::size_t item = 0; item < 100 + kSlots; ++item) {
      if (item >= kSlots) {
        const std::size_t oldest = item - kSlots;
        std::string thrown;
        try {
          line.Take();
          EXPECT_EQ(slots[oldest % kSlots], oldest);
        } catch (const Fault& fault) {
          thrown = fault.what();
        }
        EXPECT_EQ(thrown, oldest % 3 == 2 ? std::to_string(oldest) : "");
      }
      line.Put();
    }
  }
}

TEST(WorkLine, LetsTheCallerLiveWhileItWaits) {
  std::promise<void> caller;
  WorkLine line(1, 1, [&](std::size_t, std::size_t) { caller.get_future().wait(); });
  line.Put();
  int calls = 0;
  line.Take([&] {
    if (++calls == 2) caller.set_value();
  });
  EXPECT_GE(calls, 2);
}

}  // namespace
}  // namespace tarnel
