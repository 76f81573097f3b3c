#include "carrier/carrier_kind.h"

#include <gmock/gmock.h>

namespace tarnel::test {

TEST(CarrierAdvice, GoesByTheFirstBytesAndTakesNoOtherFileForOneOfAKind) {
  using namespace std::string_literals;
  const std::pair<std::string, const char*> cases[] = {
      {"\xFF\xD8\xFF\xE0", "JPEG picture: a good"},
      {"GIF89a", "GIF picture: a good"},
      {"\x89PNG\r\n\x1A\n", "PNG picture: shown"},
      {"BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s, "BMP picture: a poor"},
      {"RIFF\x24\0\0\0WAVEfmt "s, "WAV sound: a good"},
      {"RIFF\x24\0\0\0AVI LIST"s, "AVI video: a good"},
      {"fLaC\0\0\0\x22"s, "FLAC sound: played"},
      {"\0\0\0\x20"
       "ftypisom"s,
       "MP4 video: a good"},
      {"%PDF-1.7", "PDF document: shown"},
      {"PK\x03\x04\x14", "ZIP archive"},
      {"\x7F"
       "ELF\x02",
       "Program for Linux: a good"},
      {"ID3\x04", "MP3 sound: a bad"},
      {"\xFF\xFB\x90\x64", "MP3 sound: a bad"},
      {"", "Not of a kind"},
      {"BMW is a car, no picture", "Not of a kind"},
      {"RIFF\x24\0\0\0WEBPVP8 "s, "Not of a kind"},
      {"\xFF\xFE"
       "a\0"s,
       "Not of a kind"},                      // text in UTF-16
      {"\xFF\xF1\x50\x80", "Not of a kind"},  // AAC
      {"\xFF\xD8", "Not of a kind"}};
  for (const auto& [bytes, advice] : cases)
    EXPECT_THAT(std::string(CarrierAdvice(bytes)), testing::StartsWith(advice));
}

}  // namespace tarnel::test
