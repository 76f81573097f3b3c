#pragma once

namespace tarnel::help {

inline constexpr const char* kProgram =
    "Hides files behind the bytes of any carrier file and brings them back.\n"
    "The carrier stays what it is: a picture is shown, a program runs.";

inline constexpr const char* kProgramFooter =
    "Passwords are never arguments. They come from --password-file, --password-fd, the file that\n"
    "TARNEL_PASSWORD_FILE names, or a prompt on the terminal.\n"
    "\n"
    "Examples:\n"
    "  tarnel-cli hide holiday.jpg letters/ contract.pdf\n"
    "  tarnel-cli list holiday.jpg\n"
    "  tarnel-cli extract holiday.jpg --to restored\n"
    "\n"
    "\"tarnel-cli VERB --help\" shows the options of a verb. Exit codes stand in the manual, tarnel-cli(1).";

inline constexpr const char* kHide =
    "Hides files and whole folders in the hideout that the password opens, or in a new one if it opens none.";
inline constexpr const char* kHideExamples =
    "Examples:\n"
    "  tarnel-cli hide holiday.jpg letters/ contract.pdf\n"
    "  tarnel-cli hide song.wav --compress=9 --title Notes --algorithm TWOFISH notes.txt\n"
    "  tarnel-cli hide holiday.jpg --password-file ~/.secret --no-input backup.tar\n";

inline constexpr const char* kList =
    "Lists the hidden files of the hideout that the password opens, newest first.";
inline constexpr const char* kListExamples =
    "Examples:\n"
    "  tarnel-cli list holiday.jpg\n"
    "  tarnel-cli --json list holiday.jpg | jq -r '.files[].name'\n";

inline constexpr const char* kExtract =
    "Brings hidden files back into a folder: all of them, or the entries named as list shows them.";
inline constexpr const char* kExtractExamples =
    "Examples:\n"
    "  tarnel-cli extract holiday.jpg --to restored\n"
    "  tarnel-cli extract holiday.jpg contract.pdf letters/2024/ --to restored\n";

inline constexpr const char* kVerify =
    "Reads every hidden file of a hideout and says whether it is intact. Writes nothing.";
inline constexpr const char* kVerifyExamples =
    "Examples:\n"
    "  tarnel-cli verify holiday.jpg\n"
    "  tarnel-cli verify --quiet --password-file ~/.secret holiday.jpg && echo intact\n";

inline constexpr const char* kDelete =
    "Takes entries out of a hideout for good. All other bytes of the carrier stay as they are.";
inline constexpr const char* kDeleteExamples =
    "Examples:\n"
    "  tarnel-cli delete holiday.jpg contract.pdf\n"
    "  tarnel-cli delete holiday.jpg letters/2024/\n";

inline constexpr const char* kUpdate = "Puts the contents of a file in the place of a hidden one.";
inline constexpr const char* kUpdateExamples =
    "Example:\n"
    "  tarnel-cli update holiday.jpg letters/draft.txt ~/draft.txt\n";

inline constexpr const char* kPasswd =
    "Changes the password of a hideout by encrypting all its entries anew.";
inline constexpr const char* kPasswdExamples =
    "Examples:\n"
    "  tarnel-cli passwd holiday.jpg\n"
    "  tarnel-cli passwd holiday.jpg --password-file old --new-password-file new\n";

inline constexpr const char* kSearch =
    "Finds the files of a folder that are carriers which the password opens.";
inline constexpr const char* kSearchExamples =
    "Examples:\n"
    "  tarnel-cli search --recursive ~/Pictures\n"
    "  tarnel-cli search --type png --algorithm TWOFISH ~/Pictures\n";

inline constexpr const char* kRecover =
    "After an interrupted run: shows which of the carrier and the copies beside it open with the password,\n"
    "asks, puts the best one in place and keeps the others under names that end in \".old\".\n"
    "After damage: shows what is wrong with the carrier's chain of entries and how it can be mended, asks,\n"
    "and mends it in a new file; the old one is kept too.";
inline constexpr const char* kRecoverExamples =
    "Examples:\n"
    "  tarnel-cli recover holiday.jpg\n"
    "  tarnel-cli recover --yes --password-file ~/.secret holiday.jpg\n";

inline constexpr const char* kSalvage =
    "Looks through a whole carrier, however damaged, for files that the password opens, and brings back "
    "each\n"
    "that is whole. Changes nothing.";
inline constexpr const char* kSalvageExamples =
    "Example:\n"
    "  tarnel-cli salvage holiday.jpg --to saved\n";

}  // namespace tarnel::help
