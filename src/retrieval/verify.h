#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/catalogue.h"

namespace tarnel {

enum class Verdict { Intact, Damaged };

struct VerifiedEntry {
  std::string name;    ///< stored text; empty for an entry whose record is damaged
  std::string folder;  ///< stored text
  Verdict verdict = Verdict::Intact;
  std::string reason;  ///< empty when intact, else a plain sentence
};

struct VerifyResult {
  bool cancelled = false;
  std::vector<VerifiedEntry> entries;  ///< newest first
  std::vector<Path> leftovers;         ///< the ".bak" and ".tmp" that lie beside the carrier
};

/// What verifying shows.
class VerifyScreen : public virtual Dialogue {
 public:
  virtual void ShowProgress(Length value, Length maximum) = 0;
};

/// Decrypts every payload of the hideout to nowhere. An entry written under this key whose record fails its
/// tag counts as damaged, and so does, as one nameless entry, all that lies before a place where the walk
/// can't go on. Throws Error for a carrier that can't be read, or whose end is no entry and leads before its
/// begin.
VerifyResult RunVerify(const Path& carrier, const HideoutKey& key, Files& files, VerifyScreen& screen);

}  // namespace tarnel
