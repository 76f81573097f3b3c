#include <zlib.h>

#include "crypto/compression.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

/// Forms that declare more are not given to the one-shot call, which wants a buffer for all of it.
constexpr std::int64_t kComparable = 1 << 20;

class HashingSink : public ByteSink {
 public:
  void Write(Bytes bytes) override {
    crc = crc32_z(crc, bytes.data(), bytes.size());
    written += static_cast<std::int64_t>(bytes.size());
  }
  uLong crc = 0;
  std::int64_t written = 0;
};

struct Unpacked {
  bool isIntact;
  HashingSink plain;
};

Unpacked Unpack(std::string_view form, std::size_t piece) {
  HashingSink plain;
  DecompressingSink sink(plain);
  for (; !form.empty(); form.remove_prefix(std::min(piece, form.size())))
    sink.Write(AsBytes(form.substr(0, piece)));
  return {sink.IsIntact(), plain};
}

std::int64_t DeclaredSize(std::string_view form) {
  std::uint32_t size = 0;
  for (std::size_t i = 0; i < 4; ++i)
    size |= std::uint32_t{static_cast<std::uint8_t>(form[i])} << 8 * i;
  return static_cast<std::int32_t>(size);
}

/// Whether zlib's own call takes the form, and the checksum of what it makes of it.
bool OneShotTakes(std::string_view form, uLong& crc) {
  uLongf size = static_cast<uLongf>(DeclaredSize(form));
  std::string plain(size + 1, '\0');  // the call wants a buffer also for nothing
  const Bytes stream = AsBytes(form.substr(4));
  auto* const into = reinterpret_cast<Bytef*>(plain.data());
  const int code = uncompress(into, &size, stream.data(), static_cast<uLong>(stream.size()));
  crc = crc32_z(0, into, size);
  return code == Z_OK && size + 1 == plain.size();
}

void UnpacksSafely(const std::string& form, std::size_t piece) {
  const auto [isIntact, whole] = Unpack(form, form.size());
  const Unpacked inPieces = Unpack(form, piece);
  Require(isIntact == inPieces.isIntact, "the size of the pieces doesn't change the verdict");
  Require(whole.crc == inPieces.plain.crc, "the size of the pieces doesn't change the bytes");
  if (form.size() < 4) return Require(isIntact == form.empty() && whole.written == 0, "no size, no bytes");
  const std::int64_t declared = DeclaredSize(form);
  Require(whole.written <= std::max<std::int64_t>(declared, 0), "never more than declared");
  Require(!isIntact || whole.written == declared, "all that is declared");
  // Told to expect nothing, the one-shot call still takes a stream of one byte.
  if (declared <= 0 || declared > kComparable) return;
  uLong crc = 0;
  Require(OneShotTakes(form, crc) == isIntact, "intact is what the one-shot call takes");
  Require(!isIntact || crc == whole.crc, "the bytes of the one-shot call");
}

/// A true stream behind any size: `input` says how wrong the size is, and where the form is cut.
std::string Craft(Input& input) {
  const int level = input.Byte() % 10;
  const auto excess = static_cast<std::int8_t>(input.Byte());
  const std::size_t cut = input.Byte();
  const std::size_t repeats = input.Byte() % 2 == 0 ? 1 : 1 + input.Number() % 256;
  const std::string once = input.TextOf(1024);
  std::string plain;
  for (std::size_t i = 0; i < repeats; ++i)
    plain += once;
  uLongf length = compressBound(static_cast<uLong>(plain.size()));
  std::string form(4 + length, '\0');
  compress2(reinterpret_cast<Bytef*>(form.data()) + 4, &length, AsBytes(plain).data(),
            static_cast<uLong>(plain.size()), level);
  form.resize(4 + length - std::min<std::size_t>(cut, length));
  const std::int64_t declared = static_cast<std::int64_t>(plain.size()) + excess;
  for (std::size_t i = 0; i < 4; ++i)
    form[i] = static_cast<char>(declared >> 8 * i);
  return form + input.Rest();
}

}  // namespace

void FuzzDecompression(Bytes bytes) {
  Input input(bytes);
  const std::uint8_t mode = input.Byte();
  const std::size_t piece = 1 + mode / 2;
  UnpacksSafely(mode % 2 == 0 ? input.Rest() : Craft(input), piece);
}

}  // namespace tarnel::fuzz
