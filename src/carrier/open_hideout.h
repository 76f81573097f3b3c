#pragma once

#include <optional>

#include "carrier/load_hideout.h"

namespace tarnel {

/// The title of a new hideout where nobody has typed another.
inline constexpr const char* kPresetTitle = "New Hideout";

/// What the opening form shows beside reading.
class OpeningScreen : public ReadingScreen {
 public:
  /// The try `number` of 20 has failed.
  virtual void ShowTry(int number) = 0;
};

/// Tries the password with ten algorithms on the newest entry, then with the same ten on every entry, and
/// stops at the first final result. Derives the key first, yielding meanwhile with ReadingBusy set. Once
/// AbortReadingFlag is set each remaining try ends at once; the flag is cleared at the end. Abort at an error
/// ends one try only. NotFound at once if another operation is reading. What is wrong with the carrier goes
/// to ShowFaults, also where no try has loaded anything: then a hideout of this password may be there all the
/// same.
LoadResult TryPassword(const Path& carrier, const Key& password, Reading& reading, OpeningScreen& screen);

/// Makes a hideout without entries: it has no bytes in the carrier before something is hidden. A hideout open
/// on this carrier is closed without a question; its entries stay in the file. Makes the new one current.
/// `title` is the text as typed, not yet stored text.
TreeNode& CreateHideout(const Path& carrier, const Key& password, std::string_view title, Algorithm algorithm,
                        Reading& reading);

/// What is wrong with the input of the creating side, in the order in which it is checked.
enum class NewHideoutFault { NoPassword, NoTitle, ConfirmationDiffers, CarrierMissing };
std::optional<NewHideoutFault> CheckNewHideout(const Path& carrier, const Secret& password,
                                               const Secret& confirmation, std::string_view title,
                                               Files& files);

/// Characters that the title field and the new password's field refuse.
bool TitleRefuses(char c);
bool NewPasswordRefuses(char c);

}  // namespace tarnel
