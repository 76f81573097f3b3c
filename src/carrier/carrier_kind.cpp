#include "carrier/carrier_kind.h"

#include <algorithm>
#include <iterator>

#include "base/file_streams.h"

namespace tarnel {

namespace {

using namespace std::string_view_literals;

bool Has(std::string_view bytes, std::size_t at, std::string_view mark) {
  return bytes.size() >= at + mark.size() && bytes.substr(at, mark.size()) == mark;
}

unsigned ByteAt(std::string_view bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}

bool IsRiff(std::string_view bytes, std::string_view form) {
  return Has(bytes, 0, "RIFF") && Has(bytes, 8, form);
}

/// Its two reserved words are zero, and the size of its second header is one that exists.
bool IsBmp(std::string_view bytes) {
  const unsigned header = ByteAt(bytes, 14);
  return Has(bytes, 0, "BM") && Has(bytes, 6, "\0\0\0\0"sv) && header >= 12 && header <= 124 &&
         Has(bytes, 15, "\0\0\0"sv);
}

/// Tags of ID3, or a frame header of layer III whose version, bit rate and sampling rate exist.
bool IsMp3(std::string_view bytes) {
  if (Has(bytes, 0, "ID3")) return true;
  const unsigned second = ByteAt(bytes, 1);
  const unsigned third = ByteAt(bytes, 2);
  return ByteAt(bytes, 0) == 0xFF && (second & 0xE6) == 0xE2 && (second & 0x18) != 0x08 &&
         (third & 0xF0) != 0xF0 && (third & 0x0C) != 0x0C;
}

struct Kind {
  bool (*is)(std::string_view bytes);
  std::string_view advice;
};

constexpr Kind kKinds[] = {
    {[](std::string_view b) { return Has(b, 0, "\xFF\xD8\xFF"); },
     "JPEG picture: a good carrier, its readers say nothing."},
    {[](std::string_view b) { return Has(b, 0, "GIF87a") || Has(b, 0, "GIF89a"); },
     "GIF picture: a good carrier, its readers say nothing."},
    {[](std::string_view b) { return Has(b, 0, "\x89PNG\r\n\x1A\n"); },
     "PNG picture: shown as before, but programs that check such files will call it faulty."},
    {IsBmp, "BMP picture: a poor carrier, some readers complain that its length is wrong."},
    {[](std::string_view b) { return IsRiff(b, "WAVE"); },
     "WAV sound: a good carrier, its players say nothing."},
    {[](std::string_view b) { return IsRiff(b, "AVI "); },
     "AVI video: a good carrier, its players say nothing."},
    {[](std::string_view b) { return Has(b, 0, "fLaC"); },
     "FLAC sound: played as before, but programs that check such files will call it faulty."},
    {[](std::string_view b) { return Has(b, 4, "ftyp"); },
     "MP4 video: a good carrier, its players say nothing."},
    {[](std::string_view b) { return Has(b, 0, "%PDF-"); },
     "PDF document: shown as before, but programs that check such files will call it damaged."},
    {[](std::string_view b) { return Has(b, 0, "PK\x03\x04"); },
     "ZIP archive, or a document made of one: a carrier for little only, with much behind it some programs "
     "can't open it any more."},
    {[](std::string_view b) {
       return Has(b, 0,
                  "\x7F"
                  "ELF");
     },
     "Program for Linux: a good carrier, it runs as before."},
    {IsMp3, "MP3 sound: a bad carrier, players take what is hidden for sound."}};

}  // namespace

std::string_view CarrierAdvice(std::string_view firstBytes) {
  const auto* const kind =
      std::ranges::find_if(kKinds, [&](const Kind& each) { return each.is(firstBytes); });
  return kind != std::end(kKinds) ? kind->advice
                                  : "Not of a kind that was tried as a carrier: see whether it still opens.";
}

std::string CarrierAdviceFor(const Path& carrier, Files& files) {
  try {
    return std::string(CarrierAdvice(ReadFileSlice(*files.OpenToRead(carrier), Position{1}, kKindBytes)));
  } catch (const Error&) {
    return {};
  }
}

}  // namespace tarnel
