#include "crypto/compression.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/pace.h"
#include "base/secret.h"
#include "crypto/compressed_stretch.h"

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kStretch = 8 * kPiece;
constexpr std::size_t kSizeBytes = 4;

std::size_t Threads(Length size, const Dialogue* waiting, std::size_t workers) {
  if (size <= static_cast<Length>(waiting == nullptr ? kStretch : kPiece)) return 0;
  return waiting == nullptr ? workers : std::max<std::size_t>(workers, 1);
}

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
  State(ByteSource& source, Length size, int theLevel, Dialogue* waiting, std::size_t workers);

  Bytes Next();
  Bytes Head();
  Bytes NextStretch();
  Bytes Checksum();
  void PutStretch();
  void TakeStretch();
  void ReadStretch(WipedBytes& into);
  void ExpectEnd();
  void Compress(std::size_t worker, std::size_t item);

  struct Part {
    WipedBytes plain;
    WipedBytes form;
    uLong checksum = 0;
    Stretch stretch = Stretch::Inner;
  };
  enum class Phase { Head, Stretches, Checksum, Done };

  ByteSource& plain;
  Length remaining;
  const int level;
  std::optional<Pace> pace;
  Phase phase;
  std::array<std::uint8_t, kSizeBytes + 2> edge{};  ///< what stands before or behind the stretches
  Bytes pending;                                    ///< of what comes out
  uLong checksum = adler32(0, nullptr, 0);
  std::exception_ptr readError;  ///< comes out behind what was read before it
  std::vector<Part> parts;
  std::size_t put = 0;
  std::size_t taken = 0;
  std::vector<std::unique_ptr<StretchCompressor>> compressors;  ///< of each worker, or of the caller
  WorkLine line;                                                ///< at the end, as it has to go first
};

CompressingSource::State::State(ByteSource& source, Length size, int theLevel, Dialogue* waiting,
                                std::size_t workers)
    : plain(source),
      remaining(size),
      level(theLevel == Z_DEFAULT_COMPRESSION ? kPresetCompressionLevel : theLevel),
      pace(waiting == nullptr ? std::nullopt : std::optional<Pace>(*waiting)),
      phase(size == 0 ? Phase::Done : Phase::Head),
      parts(workers == 0 ? 1 : workers + 2),
      compressors(workers + 1),
      line(workers, parts.size(), [this](std::size_t worker, std::size_t item) { Compress(worker, item); }) {
  if (size < 0 || size > std::numeric_limits<std::int32_t>::max())
    throw Error(ErrorNumber::InvalidPropertyValue, "cannot compress a file of 2 GiB or more");
  if (level < 0 || level > Z_BEST_COMPRESSION)
    throw Error(ErrorNumber::InvalidPropertyValue, "no such compression level: " + std::to_string(theLevel));
}

/// What comes next; nothing at the end.
Bytes CompressingSource::State::Next() {
  switch (phase) {
    case Phase::Head:
      phase = Phase::Stretches;
      return Head();
    case Phase::Stretches:
      return NextStretch();
    case Phase::Checksum:
      phase = Phase::Done;
      return Checksum();
    case Phase::Done:
      break;
  }
  return {};
}

/// The size, then the header of RFC 1950: deflate with a window of 32 KiB, and a hint at the level.
Bytes CompressingSource::State::Head() {
  for (std::size_t i = 0; i < kSizeBytes; ++i)
    edge[i] = static_cast<std::uint8_t>(remaining >> 8 * i);
  edge[kSizeBytes] = 0x78;
  edge[kSizeBytes + 1] = level < 2 ? 0x01 : level < 6 ? 0x5E : level == 6 ? 0x9C : 0xDA;
  return edge;
}

Bytes CompressingSource::State::NextStretch() {
  while (remaining != 0 && !readError && put - taken < parts.size())
    PutStretch();
  if (taken == put) std::rethrow_exception(readError);
  TakeStretch();
  const Part& part = parts[taken++ % parts.size()];
  checksum = adler32_combine(checksum, part.checksum, static_cast<z_off_t>(part.plain.size()));
  if (part.stretch == Stretch::Last) phase = Phase::Checksum;
  return part.form;
}

Bytes CompressingSource::State::Checksum() {
  for (std::size_t i = 0; i < 4; ++i)
    edge[i] = static_cast<std::uint8_t>(checksum >> 8 * (3 - i));
  return Bytes(edge).first(4);
}

void CompressingSource::State::PutStretch() {
  Part& part = parts[put % parts.size()];
  try {
    ReadStretch(part.plain);
  } catch (...) {
    readError = std::current_exception();
    return;
  }
  part.stretch = remaining == 0 ? Stretch::Last : Stretch::Inner;
  line.Put();
  ++put;
}

void CompressingSource::State::TakeStretch() {
  if (!pace) return line.Take();
  line.Take([this] { pace->Step(); });
  pace->Step();
}

void CompressingSource::State::ReadStretch(WipedBytes& into) {
  into.resize(std::min(kStretch, static_cast<std::size_t>(remaining)));
  for (std::size_t filled = 0; filled < into.size();) {
    const std::size_t wanted = std::min(kPiece, into.size() - filled);
    const std::size_t got = plain.Read(MutableBytes(into).subspan(filled, wanted));
    if (got < wanted) throw FileChanged();
    filled += got;
    remaining -= static_cast<Length>(got);
  }
  if (remaining == 0) ExpectEnd();
}

void CompressingSource::State::ExpectEnd() {
  std::uint8_t beyond = 0;
  if (plain.Read({&beyond, 1}) != 0) throw FileChanged();
}

void CompressingSource::State::Compress(std::size_t worker, std::size_t item) {
  Part& part = parts[item % parts.size()];
  std::unique_ptr<StretchCompressor>& compressor = compressors[worker];
  if (!compressor) compressor = std::make_unique<StretchCompressor>(level);
  part.form = compressor->Compress(part.plain, part.stretch);
  part.checksum = adler32(adler32(0, nullptr, 0), part.plain.data(), static_cast<uInt>(part.plain.size()));
}

CompressingSource::CompressingSource(ByteSource& plain, Length size, int level, Dialogue* waiting,
                                     std::size_t workers)
    : m_isEmpty(size == 0),
      m_state(std::make_unique<State>(plain, size, level, waiting, Threads(size, waiting, workers))) {}

CompressingSource::~CompressingSource() = default;

std::size_t CompressingSource::Read(MutableBytes into) {
  if (m_isEmpty) m_state->ExpectEnd();
  std::size_t filled = 0;
  while (filled < into.size()) {
    if (m_state->pending.empty()) m_state->pending = m_state->Next();
    if (m_state->pending.empty()) break;
    const std::size_t count = std::min(into.size() - filled, m_state->pending.size());
    std::copy_n(m_state->pending.begin(), count, into.begin() + static_cast<std::ptrdiff_t>(filled));
    m_state->pending = m_state->pending.subspan(count);
    filled += count;
  }
  return filled;
}

struct DecompressingSink::State {
  explicit State(ByteSink& sink) : plain(sink) {}
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
  output.resize(static_cast<std::size_t>(std::clamp<std::int64_t>(remaining, 1, kPiece)));
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
