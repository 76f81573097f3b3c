#include "crypto/compression.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "base/error.h"
#include "base/secret.h"

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kSizeBytes = 4;

void SetInput(z_stream& stream, Bytes bytes) {
  stream.next_in = const_cast<Bytef*>(bytes.data());  // zlib reads only, whatever its type says
  stream.avail_in = static_cast<uInt>(bytes.size());
}

void SetOutput(z_stream& stream, MutableBytes bytes) {
  stream.next_out = bytes.data();
  stream.avail_out = static_cast<uInt>(bytes.size());
}

Error FileChanged() {
  return {ErrorNumber::DeviceIo, "cannot compress: the file changed while it was read"};
}

}  // namespace

struct CompressingSource::State {
  State(ByteSource& source, Length size, int level);
  ~State() {
    if (hasStream) deflateEnd(&stream);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  std::size_t TakeSizeField(MutableBytes into);
  std::size_t Deflate(MutableBytes into);
  void Refill();
  void ExpectEnd();

  ByteSource& plain;
  Length remaining;
  std::array<std::uint8_t, kSizeBytes> sizeField{};
  std::size_t sizeFieldTaken = 0;
  WipedBytes input;
  z_stream stream{};
  bool hasStream = false;
  bool isFinished = false;
};

CompressingSource::State::State(ByteSource& source, Length size, int level) : plain(source), remaining(size) {
  if (size < 0 || size > std::numeric_limits<std::int32_t>::max())
    throw Error(ErrorNumber::InvalidPropertyValue, "cannot compress a file of 2 GiB or more");
  if (level < Z_DEFAULT_COMPRESSION || level > Z_BEST_COMPRESSION)
    throw Error(ErrorNumber::InvalidPropertyValue, "no such compression level: " + std::to_string(level));
  if (size == 0) return;
  for (std::size_t i = 0; i < kSizeBytes; ++i)
    sizeField[i] = static_cast<std::uint8_t>(size >> 8 * i);
  input.resize(kPiece);
  if (deflateInit(&stream, level) != Z_OK) throw std::bad_alloc();
  hasStream = true;
}

std::size_t CompressingSource::State::TakeSizeField(MutableBytes into) {
  const std::size_t count = std::min(into.size(), kSizeBytes - sizeFieldTaken);
  std::copy_n(sizeField.begin() + static_cast<std::ptrdiff_t>(sizeFieldTaken), count, into.begin());
  sizeFieldTaken += count;
  return count;
}

/// Fills `into`, which is no larger than a piece; less only at the end of the stream.
std::size_t CompressingSource::State::Deflate(MutableBytes into) {
  SetOutput(stream, into);
  while (stream.avail_out != 0 && !isFinished) {
    if (stream.avail_in == 0 && remaining != 0) Refill();
    isFinished = deflate(&stream, remaining == 0 ? Z_FINISH : Z_NO_FLUSH) == Z_STREAM_END;
  }
  return into.size() - stream.avail_out;
}

void CompressingSource::State::Refill() {
  const std::size_t wanted = std::min(input.size(), static_cast<std::size_t>(remaining));
  const std::size_t got = plain.Read(MutableBytes(input).first(wanted));
  if (got < wanted) throw FileChanged();
  SetInput(stream, Bytes(input).first(got));
  remaining -= static_cast<Length>(got);
  if (remaining == 0) ExpectEnd();
}

void CompressingSource::State::ExpectEnd() {
  std::uint8_t beyond = 0;
  if (plain.Read({&beyond, 1}) != 0) throw FileChanged();
}

CompressingSource::CompressingSource(ByteSource& plain, Length size, int level)
    : m_state(std::make_unique<State>(plain, size, level)) {}

CompressingSource::~CompressingSource() = default;

std::size_t CompressingSource::Read(MutableBytes into) {
  if (!m_state->hasStream) {
    m_state->ExpectEnd();
    return 0;
  }
  std::size_t filled = m_state->TakeSizeField(into);
  while (filled < into.size() && !m_state->isFinished)
    filled += m_state->Deflate(into.subspan(filled, std::min(kPiece, into.size() - filled)));
  return filled;
}

struct DecompressingSink::State {
  explicit State(ByteSink& sink) : plain(sink), output(kPiece) {}
  ~State() {
    if (phase != Phase::Size) inflateEnd(&stream);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  void TakeSize(Bytes& bytes);
  void Inflate(Bytes bytes);
  void HandOn(std::size_t length);

  enum class Phase { Size, Stream, Done, Faulty };

  ByteSink& plain;
  WipedBytes output;
  Phase phase = Phase::Size;
  std::array<std::uint8_t, kSizeBytes> sizeField{};
  std::size_t sizeFieldTaken = 0;
  std::int64_t remaining = 0;
  z_stream stream{};
};

void DecompressingSink::State::TakeSize(Bytes& bytes) {
  const std::size_t count = std::min(bytes.size(), kSizeBytes - sizeFieldTaken);
  std::copy_n(bytes.begin(), count, sizeField.begin() + static_cast<std::ptrdiff_t>(sizeFieldTaken));
  bytes = bytes.subspan(count);
  sizeFieldTaken += count;
  if (sizeFieldTaken < kSizeBytes) return;
  std::uint32_t size = 0;
  for (std::size_t i = kSizeBytes; i-- > 0;)
    size = size << 8 | sizeField[i];
  remaining = static_cast<std::int32_t>(size);
  if (inflateInit(&stream) != Z_OK) throw std::bad_alloc();
  phase = remaining < 0 ? Phase::Faulty : Phase::Stream;
}

void DecompressingSink::State::Inflate(Bytes bytes) {
  SetInput(stream, bytes);
  while (phase == Phase::Stream && (stream.avail_in != 0 || stream.avail_out == 0)) {
    SetOutput(stream, output);
    const int code = inflate(&stream, Z_NO_FLUSH);
    HandOn(output.size() - stream.avail_out);
    if (phase == Phase::Faulty || code == Z_BUF_ERROR) return;
    if (code == Z_STREAM_END)
      phase = remaining == 0 ? Phase::Done : Phase::Faulty;
    else if (code != Z_OK)
      phase = Phase::Faulty;
  }
}

void DecompressingSink::State::HandOn(std::size_t length) {
  const std::size_t allowed =
      static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(length), remaining));
  if (allowed != 0) plain.Write(Bytes(output).first(allowed));
  remaining -= static_cast<std::int64_t>(allowed);
  if (allowed < length) phase = Phase::Faulty;
}

DecompressingSink::DecompressingSink(ByteSink& plain) : m_state(std::make_unique<State>(plain)) {}

DecompressingSink::~DecompressingSink() = default;

void DecompressingSink::Write(Bytes bytes) {
  if (m_state->phase == State::Phase::Size) m_state->TakeSize(bytes);
  while (!bytes.empty() && m_state->phase == State::Phase::Stream) {
    const std::size_t count = std::min(bytes.size(), kPiece);
    m_state->Inflate(bytes.first(count));
    bytes = bytes.subspan(count);
  }
}

bool DecompressingSink::IsIntact() const {
  return m_state->phase == State::Phase::Done ||
         (m_state->phase == State::Phase::Size && m_state->sizeFieldTaken == 0);
}

}  // namespace tarnel
