#pragma once

#include "crypto/compression.h"
#include "retrieval/carrier_rewrite.h"
#include "retrieval/preview.h"

namespace tarnel {

struct UpdateRequest {
  PreviewParcel parcel;  ///< the entry
  Path previewFile;      ///< the new contents; the entry keeps its name
  /// Of the settings: 1 to 9, or 0 to store the file as it is; what lies outside counts as the nearest of
  /// these. An entry that was compressed is compressed again at this level; one that was not stays so.
  int compressionLevel = kPresetCompressionLevel;
  Leftover leftover = Leftover::Refuse;
};

struct UpdateResult {
  /// Else nothing was done. Busy: a view, another update, a return from a view, or a reading was running.
  enum class Refused { No, FileMissing, ByPerson, Busy } refused = Refused::No;
  RewriteEnding ending = RewriteEnding::Done;
  PreviewParcel parcel;  ///< the entry as it is now: another one only when Done
  FileStat taken;        ///< of the file when its reading began; the entry holds what it held then
  Path temporary;        ///< set where the complete new carrier was left beside the old one
};

/// Puts the file's present contents in the place of the entry, after asking. The entry moves to the
/// end of the current carrier, with the moment of the update as its date; attributes, mode and folder stay.
/// All other bytes stay as they are and in their order. The new entry is read back and compared with the
/// file; one that changes meanwhile is an Error DeviceIo, which is asked about. When Done the hideout was
/// reloaded. Cancel is looked at before each full block. After Abort a carrier that was read-only stays
/// writable. Errors before the first byte is written are thrown, as CarrierRewrite does.
UpdateResult RunUpdate(const UpdateRequest& request, Reading& reading, RewriteScreen& screen);

}  // namespace tarnel
