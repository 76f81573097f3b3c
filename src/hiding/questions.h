#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "hiding/run_hide.h"
#include "hiding/selection.h"

namespace tarnel {

/// "hide.error": Abort, Retry, Ignore, with Retry preset.
Question HideErrorQuestion(const Error& error);

/// "hide.no-space": Retry or Cancel. `drive` is where the file system of the carrier begins.
Question NoSpaceQuestion(const Path& drive, Length required);

/// "hide.too-large": tells that the carrier would leave the format's limit, and what can be done.
Question TooLargeQuestion(const Path& carrier);

/// "hide.trash-failed": the originals, or some of them, did not go to the recycle bin.
Question TrashFailedQuestion();

/// "hide.cancel": what the form asks when Cancel is pressed while a hide runs.
Question CancelHideQuestion();

/// "hide.delete-originals": what the form asks when the deletion of the originals is chosen.
Question DeleteOriginalsQuestion();

/// "hide.no-files": the list is empty.
Question NoFilesQuestion();

/// "hide.nothing-specified": neither files nor folders were chosen.
Question NothingSpecifiedQuestion();

/// "hide.report": what the person has to hear of a run; nothing if all was done.
std::optional<Question> HideReport(const HideResult& result, const Path& carrier);

/// "hide.passed-over": what collecting has passed over; nothing if that is nothing.
std::optional<Question> PassedOverReport(const std::vector<PassedOver>& passed);

/// "hide.bad-name": the new name of a file in the list is none.
Question BadNameQuestion();

/// Characters that a new name of a file in the list may not hold.
inline constexpr std::string_view kRefusedInNames = "\\/:*?<>|\"";

}  // namespace tarnel
