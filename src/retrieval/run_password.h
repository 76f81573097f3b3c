#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "carrier/chain.h"
#include "retrieval/carrier_rewrite.h"

namespace tarnel {

/// What is wrong with the input, in the order in which it is checked.
enum class PasswordFault { OldDiffers, NewIsEmpty, ConfirmationDiffers };

struct PasswordRequest {
  Key oldPassword;
  Key newPassword;  ///< may equal the old one; all the work is done then too
  Secret confirmation;
  Leftover leftover = Leftover::Refuse;
};

struct PasswordResult {
  std::optional<PasswordFault> refused;  ///< set: the person was told, nothing was done
  RewriteEnding ending = RewriteEnding::Done;
  std::size_t changed = 0;           ///< entries under the new password
  std::vector<std::string> damaged;  ///< stored names of those whose contents are damaged, before and after
  ChainFaults leftBehind;            ///< what could not be taken along and stays under the old password
  Path temporary;                    ///< set where the complete new carrier was left beside the old one
};

/// What is wrong with the input first; nothing if `current` is to be changed so.
std::optional<PasswordFault> FaultOf(const PasswordRequest& request, const Key& current);

/// Encrypts every entry of the current hideout anew, in the place it has, and reloads the hideout under the
/// new password, which becomes the current one. The algorithm stays, and so do all other bytes. Plain
/// contents never touch a disk.
/// What can't be taken along (damaged records, all behind a break of the chain, entries of another format) is
/// asked about before anything is written: Ignore leaves it behind, Abort leaves all as it was.
/// A payload that turns out to be damaged is asked about, as an error of the handler: Ignore takes it over as
/// damaged as it is; Abort leaves all as it was.
/// Cancel is looked at before each full block. Errors before the first byte is written are thrown, as
/// CarrierRewrite does.
PasswordResult RunPassword(const PasswordRequest& request, Reading& reading, RewriteScreen& screen);

}  // namespace tarnel
