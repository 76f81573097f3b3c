#include "carrier/stored_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/utf8.h"

namespace tarnel {

namespace {

/// What the codes 0x80 to 0x9F mean in Windows-1252; 0 where it leaves them unassigned. All others are the
/// code points of the same number.
constexpr std::array<char32_t, 32> kUpperCodes = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

constexpr std::string_view kDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz+-";
constexpr char kClose = '\x9D';

/// A run of escaped units: its opening code, the unit's digits, and the values that belong there.
struct RunKind {
  char open;
  std::size_t digits;
  char32_t first, last;
};
constexpr RunKind kRawBytes = {'\x90', 2, 0x80, 0xFF};
constexpr std::array<RunKind, 3> kCodePoints = {
    {{'\x81', 2, 0, 0xFFF}, {'\x8D', 3, 0x1000, 0x3FFFF}, {'\x8F', 4, 0x40000, 0x10FFFF}}};

std::uint8_t ByteOf(char c) {
  return static_cast<std::uint8_t>(c);
}

char32_t FromCodePage(char c) {
  const std::uint8_t byte = ByteOf(c);
  if (byte < 0x80 || byte > 0x9F) return byte;
  const char32_t code = kUpperCodes[byte - 0x80U];
  return code == 0 ? byte : code;
}

std::optional<char> ToCodePage(char32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<char>(code);
  const auto* const found = std::find(kUpperCodes.begin(), kUpperCodes.end(), code);
  if (found == kUpperCodes.end()) return std::nullopt;
  return static_cast<char>(0x80 + (found - kUpperCodes.begin()));
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80U | (code >> shift & 0x3FU)); };
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0U | code >> 6);
    tail(0);
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0U | code >> 12);
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0U | code >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

/// Writes stored text and joins neighbouring escapes of one kind to one run.
class Writer {
 public:
  void Plain(char c) {
    CloseRun();
    m_text += c;
  }

  void Escape(const RunKind& kind, char32_t value) {
    if (m_open != kind.open) {
      CloseRun();
      m_open = kind.open;
      m_text += m_open;
    }
    for (std::size_t place = kind.digits; place-- > 0;)
      m_text += kDigits[value >> (6 * place) & 63U];
  }

  bool EndsInEquals() const { return m_text.ends_with('='); }

  std::string Take() {
    CloseRun();
    return std::move(m_text);
  }

 private:
  void CloseRun() {
    if (m_open != 0) m_text += kClose;
    m_open = 0;
  }

  std::string m_text;
  char m_open = 0;
};

void EscapeCodePoint(Writer& writer, char32_t code) {
  const auto* const kind = std::find_if(kCodePoints.begin(), kCodePoints.end(),
                                        [code](const RunKind& candidate) { return code <= candidate.last; });
  writer.Escape(*kind, code);
}

bool IsMarkup(char32_t code) {
  return code == '<' || code == '>' || code == '\\';
}

/// Values that ToStored escapes; no other is taken from a run.
bool BelongsIn(const RunKind& kind, char32_t value) {
  if (value < kind.first || value > kind.last) return false;
  if (&kind == &kRawBytes) return true;
  return (value < 0xD800 || value > 0xDFFF) && (IsMarkup(value) || !ToCodePage(value));
}

const RunKind* KindOfRun(char open) {
  if (open == kRawBytes.open) return &kRawBytes;
  for (const RunKind& kind : kCodePoints) {
    if (open == kind.open) return &kind;
  }
  return nullptr;
}

/// Nothing if `digits` holds less than that many, or something else.
std::optional<char32_t> ReadDigits(std::string_view digits, std::size_t count) {
  if (digits.size() < count) return std::nullopt;
  char32_t value = 0;
  for (const char c : digits.substr(0, count)) {
    const std::size_t digit = kDigits.find(c);
    if (digit == std::string_view::npos) return std::nullopt;
    value = value << 6 | static_cast<char32_t>(digit);
  }
  return value;
}

/// Decodes the run at the beginning of `stored` to the end of `bytes`. Gives its length, or 0 with nothing
/// appended if no run stands there. Looks no further than digits go, so that opening codes without a close
/// cost no more than their number.
std::size_t DecodeRun(std::string_view stored, std::string& bytes) {
  const RunKind* const kind = KindOfRun(stored[0]);
  if (kind == nullptr) return 0;
  std::string decoded;
  std::size_t at = 1;
  for (; at < stored.size() && stored[at] != kClose; at += kind->digits) {
    const std::optional<char32_t> value = ReadDigits(stored.substr(at), kind->digits);
    if (!value || !BelongsIn(*kind, *value)) return 0;
    if (kind == &kRawBytes) {
      decoded += static_cast<char>(*value);
    } else {
      AppendUtf8(decoded, *value);
    }
  }
  if (decoded.empty() || at >= stored.size()) return 0;
  bytes += decoded;
  return at + 1;
}

}  // namespace

std::string ToStored(std::string_view bytes, TextKind kind) {
  Writer writer;
  while (!bytes.empty()) {
    const Utf8Character character = FirstUtf8Character(bytes);
    const std::optional<char> plain = ToCodePage(character.code);
    if (character.length == 0) {
      writer.Escape(kRawBytes, ByteOf(bytes[0]));
    } else if (!plain || plain == '>' || (plain == '\\' && kind == TextKind::PathComponent) ||
               (plain == '<' && writer.EndsInEquals())) {
      EscapeCodePoint(writer, character.code);
    } else {
      writer.Plain(*plain);
    }
    bytes.remove_prefix(std::max<std::size_t>(character.length, 1));
  }
  return writer.Take();
}

std::string ToPlatform(std::string_view stored) {
  std::string bytes;
  while (!stored.empty()) {
    std::size_t length = DecodeRun(stored, bytes);
    if (length == 0) {
      AppendUtf8(bytes, FromCodePage(stored[0]));
      length = 1;
    }
    stored.remove_prefix(length);
  }
  return bytes;
}

std::string ToDisplay(std::string_view stored) {
  const std::string bytes = ToPlatform(stored);
  std::string text;
  for (std::string_view rest = bytes; !rest.empty();) {
    const std::size_t length = FirstUtf8Character(rest).length;
    if (length == 0) {
      AppendUtf8(text, 0xFFFD);
    } else {
      text += rest.substr(0, length);
    }
    rest.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

}  // namespace tarnel
