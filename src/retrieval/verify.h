#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/chain.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

struct VerifyRequest {
  Path carrier;
  Key password;
  Algorithm algorithm = Algorithm::Rijndael256;
};

enum class Verdict { Intact, Damaged, Unreadable };

struct VerifiedEntry {
  Position at;         ///< first byte of the entry
  std::string name;    ///< stored text; empty for an entry whose record is damaged
  std::string folder;  ///< stored text
  Verdict verdict = Verdict::Intact;
  std::string reason;  ///< empty when intact, else a clause
};

enum class VerifyEnding { Done, Cancelled };

struct VerifyResult {
  VerifyEnding ending = VerifyEnding::Done;
  std::deque<VerifiedEntry> entries;  ///< newest first
  ChainFaults chain;                   ///< without its entries, which stand above
  std::vector<Path> leftovers;         ///< the ".bak" and ".tmp" that lie beside the carrier

  /// True if everything that the chain leads to is intact and nothing is known to be out of its reach.
  bool IsWhole() const;
};

/// What verifying shows.
class VerifyScreen : public virtual Dialogue {
 public:
  virtual void ShowProgress(Length value, Length maximum) = 0;
};

/// Decrypts every payload of the hideout to nowhere, whether it is open or not. An entry written under this
/// key whose record fails its tag counts as damaged. A payload that the disk doesn't give is unreadable; the
/// others are read all the same. Throws Error for a carrier whose chain can't be read, or whose end is no
/// entry and leads before its begin.
VerifyResult RunVerify(const VerifyRequest& request, Files& files, VerifyScreen& screen);

}  // namespace tarnel
