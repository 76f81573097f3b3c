#include "carrier/stored_text.h"

#include "base/utf8.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = FirstUtf8Character(text).length;
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

void KeepsBytes(const std::string& bytes, TextKind kind) {
  const std::string stored = ToStored(bytes, kind);
  Require(stored.find('>') == std::string::npos, "no bracket ends a tag");
  Require(stored.find("=<") == std::string::npos, "no value looks like a key");
  Require(kind == TextKind::Plain || stored.find('\\') == std::string::npos, "no component has two parts");
  if (bytes.find('\0') != std::string::npos) return;
  Require(ToPlatform(stored) == bytes, "every name comes back byte for byte");
  Require(!IsUtf8(bytes) || ToDisplay(stored) == bytes, "valid text is shown as it is");
}

}  // namespace

void FuzzStoredText(Bytes bytes) {
  const std::string text(AsText(bytes));
  for (const TextKind kind : {TextKind::Plain, TextKind::PathComponent}) {
    KeepsBytes(text, kind);
    KeepsBytes(ToPlatform(text), kind);  // what a crafted text turns into is a name like any other
  }
  Require(IsUtf8(ToDisplay(text)), "what is shown is valid");
}

}  // namespace tarnel::fuzz
