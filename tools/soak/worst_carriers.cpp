#include "tools/soak/worst_carriers.h"

#include <fstream>
#include <functional>
#include <map>

#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/record.h"
#include "crypto/cipher.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {
namespace {

using Part = std::function<std::string(std::size_t number)>;

const std::string kPayload = "some sixty bytes that are no file of anybody, for it is damaged";

std::string Repeated(const std::string& text, std::size_t size) {
  std::string repeated;
  while (repeated.size() < size)
    repeated += text;
  return repeated;
}

std::string Tags(const std::string& name, const std::string& folder, const std::string& payload) {
  return "?Fnm=<" + name + ">?FlsEn=<" + std::to_string(payload.size()) + ">?Fldnm=<" + folder +
         ">?CompVers=<701>";
}

std::string Entry(const std::string& record, const std::string& payload,
                  Algorithm algorithm = Algorithm::Rijndael256) {
  std::string secondKey;
  return payload +
         SealEntry(record, static_cast<Length>(payload.size()), algorithm, HeldKey("one"), secondKey);
}

std::string WithAltered(std::string entry, std::size_t at) {
  entry.at(at) = entry.at(at) == 'A' ? 'B' : 'A';
  return entry;
}

/// Text of `size` characters that begins as a record of the key does.
std::string Front(std::size_t size, Algorithm algorithm) {
  std::string secondKey;
  return CipherEncryptString(algorithm, std::string(size * 3 / 4, 'x'), TextForm::Base64, HeldKey("one"),
                             secondKey);
}

const std::map<std::string, Part>& Kinds() {
  static const std::string line = std::string(76, 'Q') + "\r\n";
  static const std::string trailer = PackLengthField(0) + PackLengthField(1);
  static const std::string small = CarrierBench::Encrypt("x", {"one"});
  static const std::map<std::string, Part> kinds = {
      {"tiny", [](std::size_t) { return Entry("?Fnm=<n>?CompVers=<701>", ""); }},
      {"small", [](std::size_t i) { return Entry(Tags(std::to_string(i), "", small), small); }},
      {"deep",
       [](std::size_t i) {
         return Entry(Tags("n", std::to_string(i) + Repeated("\\d", 4080), small), small);
       }},
      {"long",
       [](std::size_t i) {
         return Entry(Tags("n", std::to_string(i) + std::string(4080, 'l'), small), small);
       }},
      {"escapes",
       [](std::size_t) {
         return Entry(Tags("n", "", small) + "?HideoutTitel=<" + std::string(700'000, '\x81') + ">", small);
       }},
      {"names", [](std::size_t) { return Entry(Tags(std::string(700'000, '\x81'), "", small), small); }},
      {"keys", [](std::size_t) { return Entry(Repeated("?Fls=", 700'000) + Tags("n", "", small), small); }},
      {"payloads", [](std::size_t i) { return Entry(Tags(std::to_string(i), "", kPayload), kPayload); }},
      {"records", [](std::size_t) { return WithAltered(Entry(Tags("n", "", ""), ""), 50); }},
      {"trailers", [](std::size_t) { return "x" + trailer; }},
      {"lines", [](std::size_t) { return "x" + line; }},
      {"text", [](std::size_t) { return line; }},
      {"fronts", [](std::size_t) { return Front(76, Algorithm::TripleDes).substr(0, 76) + "\r\nx"; }},
      {"runs",
       [](std::size_t) {
         static const std::string run = Front(1'000'000, Algorithm::TripleDes);
         return run.substr(0, run.size() / 78 * 78) + "x";
       }},
  };
  return kinds;
}

}  // namespace

std::vector<std::string> WorstKinds() {
  std::vector<std::string> names;
  for (const auto& [name, part] : Kinds())
    names.push_back(name);
  return names;
}

void WriteWorstCarrier(const std::string& kind, const Path& path, std::size_t bytes) {
  const Part& part = Kinds().at(kind);
  std::ofstream carrier(path, std::ios::binary);
  std::size_t written = 0;
  for (std::size_t i = 0; written < bytes; ++i) {
    const std::string text = part(i);
    carrier << text;
    written += text.size();
  }
  const std::string payload = CarrierBench::Encrypt("x", {"one"});
  carrier << Entry(Tags("last", "", payload), payload);
}

}  // namespace tarnel::test
