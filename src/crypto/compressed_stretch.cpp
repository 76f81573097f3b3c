#include "crypto/compressed_stretch.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <new>

#include "base/error.h"

namespace tarnel {
namespace {

/// Places in a deflate stream, counted in bits from its first on.
struct LastBlock {
  std::size_t header = 0;
  std::size_t end = 0;
};

/// Reads a whole deflate stream, compares it with the text it has to give, and finds its last block.
class Inspection {
 public:
  Inspection(Bytes form, Bytes plain)
      : m_form(form), m_plain(plain), m_text(std::min(plain.size(), std::size_t{128} * 1024)) {
    if (inflateInit2(&m_stream, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
    m_stream.next_in = const_cast<Bytef*>(form.data());  // zlib reads only, whatever its type says
    m_stream.avail_in = static_cast<uInt>(form.size());
  }
  ~Inspection() { inflateEnd(&m_stream); }
  Inspection(const Inspection&) = delete;
  Inspection& operator=(const Inspection&) = delete;

  LastBlock Run() {
    while (!Step())
      continue;
    if (m_compared != m_plain.size()) throw Differs();
    return m_found;
  }

 private:
  /// True at the end.
  bool Step() {
    m_stream.next_out = m_text.data();
    m_stream.avail_out = static_cast<uInt>(m_text.size());
    const int code = inflate(&m_stream, Z_BLOCK);
    Compare(Bytes(m_text).first(m_text.size() - m_stream.avail_out));
    if (code == Z_STREAM_END) return true;
    if (code != Z_OK) throw Differs();
    if ((m_stream.data_type & kBehindBlock) != 0) Note();
    return false;
  }

  void Compare(Bytes text) {
    const Bytes expected = m_plain.subspan(m_compared, std::min(text.size(), m_plain.size() - m_compared));
    if (!std::ranges::equal(text, expected)) throw Differs();
    m_compared += text.size();
  }

  void Note() {
    const std::size_t unused = m_stream.data_type & kUnusedBits;
    const std::size_t place = (m_form.size() - m_stream.avail_in) * 8 - unused;
    ((m_stream.data_type & kInLastBlock) != 0 ? m_found.end : m_found.header) = place;
  }

  static Error Differs() {
    return {ErrorNumber::DeviceIo, "cannot compress: what was compressed does not give the same bytes back"};
  }

  // What zlib's data_type says.
  static constexpr int kUnusedBits = 7;
  static constexpr int kInLastBlock = 64;
  static constexpr int kBehindBlock = 128;

  Bytes m_form;
  Bytes m_plain;
  std::size_t m_compared = 0;
  LastBlock m_found;
  z_stream m_stream{};
  WipedBytes m_text;
};

/// Makes the last block one of many, and ends the form at a byte by an empty stored block.
void Continue(WipedBytes& form, const LastBlock& last) {
  constexpr std::size_t kHeaderBits = 3;
  form[last.header / 8] &= static_cast<unsigned char>(~(1U << last.header % 8));
  form.resize(last.end / 8 + 1);
  form.back() &= static_cast<unsigned char>((1U << last.end % 8) - 1);
  form.resize((last.end + kHeaderBits + 7) / 8);
  for (const int byte : {0x00, 0x00, 0xFF, 0xFF})
    form.push_back(static_cast<unsigned char>(byte));
}

}  // namespace

struct StretchCompressor::State {
  struct Free {
    void operator()(libdeflate_compressor* unneeded) const { libdeflate_free_compressor(unneeded); }
  };
  std::unique_ptr<libdeflate_compressor, Free> compressor;
};

StretchCompressor::StretchCompressor(int level) : m_state(std::make_unique<State>()) {
  m_state->compressor.reset(libdeflate_alloc_compressor(level));
  if (!m_state->compressor) throw std::bad_alloc();
}

StretchCompressor::~StretchCompressor() = default;

WipedBytes StretchCompressor::Compress(Bytes plain, Stretch stretch) {
  libdeflate_compressor* compressor = m_state->compressor.get();
  WipedBytes form(libdeflate_deflate_compress_bound(compressor, plain.size()));
  form.resize(libdeflate_deflate_compress(compressor, plain.data(), plain.size(), form.data(), form.size()));
  const LastBlock last = Inspection(form, plain).Run();
  if (stretch == Stretch::Inner) Continue(form, last);
  return form;
}

}  // namespace tarnel
