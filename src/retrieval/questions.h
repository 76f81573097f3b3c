#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/dialogue.h"
#include "base/error.h"
#include "base/files.h"
#include "carrier/chain.h"
#include "retrieval/preview.h"
#include "retrieval/run_extract.h"
#include "retrieval/run_password.h"

/// What those who answer by rule know questions by.
namespace tarnel::question_id {
inline constexpr const char* kDamagedEntry = "extract.damaged";
inline constexpr const char* kEntryName = "extract.name";
inline constexpr const char* kUpdate = "update.confirm";
}  // namespace tarnel::question_id

/// All that the retrieving and rewriting operations ask. The ids are stable.
namespace tarnel::questions {

/// Titles of the forms while they work.
inline constexpr const char* kExtracting = "Tarnel [Extracting...]";
inline constexpr const char* kDeleting = "Tarnel [Deleting...]";
inline constexpr const char* kViewing = "Tarnel [View/Edit...]";
inline constexpr const char* kUpdating = "Tarnel [Updating...]";
inline constexpr const char* kChangingPassword = "Tarnel [Password]";

/// "extract.damaged", "extract.name" or "extract.error". On Ignore the entry is passed over.
enum class ExtractFault {
  Damaged,
  Name,  ///< nothing can be made under the entry's name or folder
  Other
};
Question ExtractError(const Error& error, ExtractFault fault);

/// "extract.overwrite": the target stands already.
Question Overwrite(const Path& target);

/// "extract.no-space": sizes in bytes. Yes goes on, for existing files that are replaced give space back.
Question NoSpaceToExtract(const Path& target, double required, std::int64_t free);
/// "extract.refused": why nothing can be extracted there.
Question TargetRefused(const Error& error);
/// "extract.report": what was damaged, left out or kept; nothing if all went as it was asked for.
std::optional<Question> ExtractReport(const ExtractResult& result);

/// "password.left-behind": entries that a change of password can't take along. Ignore changes the others,
/// Abort nothing.
Question PasswordLeavesBehind(const ChainFaults& faults, const Path& carrier);

/// "delete.error"; "password.error"; "password.damaged", for a payload; "update.error"; "view.error".
Question DeleteError(const Error& error);
Question PasswordError(const Error& error);
Question PasswordDamaged(const Error& error);
Question UpdateError(const Error& error);
Question ViewError(const Error& error);

/// "delete.not-replaced" and so on: the complete new carrier is at `temporary`.
Question DeleteNotReplaced(const Path& temporary, const Error& cause);
Question PasswordNotReplaced(const Path& temporary, const Error& cause);
Question UpdateNotReplaced(const Path& temporary, const Error& cause);

/// "password.old", "password.empty", "password.confirmation".
Question PasswordRefused(PasswordFault fault);

/// "update.missing": the previewed file has gone.
Question PreviewMissing();
/// "update.entry-gone": another program has taken the entry out of the carrier while it was viewed.
Question ViewedEntryGone();
/// "update.confirm"; sizes in bytes, as plain digits.
Question ConfirmUpdate(std::string_view oldSize, std::string_view newSize);

/// "view.preview", before anything is extracted.
Question ConfirmPreview(std::string_view storedName);
/// "view.return", then "view.return-without"; "view.locked": it could not be destroyed; "view.attention": and
/// it stays.
/// The first says so in one more line if the file has changed since the last update, and then presets No.
Question ReturnFromView(PreviewChange change);
Question ReturnWithoutDeletion();
Question PreviewLocked();
Question PreviewStays();
/// "view.left-behind": plain files that a view has left; Yes destroys them, No is preset.
Question PreviewsLeftBehind(const std::vector<Path>& plainFiles);

/// "extract.cancel" and its like: what a form asks before it asks its operation to stop.
Question ReallyCancel(const char* id, const char* title);

}  // namespace tarnel::questions
