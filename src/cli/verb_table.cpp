#include <algorithm>

#include "cli/command_table.h"
#include "cli/option_values.h"

namespace tarnel {

namespace {

std::string First(ParsedOptions& parsed) {
  return parsed.operands.front();
}

std::vector<std::string> Rest(ParsedOptions& parsed) {
  return {parsed.operands.begin() + 1, parsed.operands.end()};
}

VerbRow Hide() {
  return {.name = "hide",
          .operands = {"CARRIER", "[PATH...]"},
          .brief = "hide files and folders in a carrier",
          .text =
              "Hides files and whole folders in the hideout that the password opens. If it opens none, a new "
              "one is made, after a question, or with --new.",
          .more =
              "A folder is hidden with all below it, and its name becomes the first part of the folder "
              "names. PATH - is what comes through standard input, up to 512 MiB, under the name that --name "
              "gives; it is kept in memory, which the system may swap, and in no file. What can't be hidden "
              "is passed over and "
              "named: pipes, sockets, devices, links to folders, links met in a folder unless --follow is "
              "given, and empty folders, which a hideout doesn't know. Owners, groups and access lists are "
              "not kept; permissions are. A run that fails at an error or is cancelled leaves the carrier as "
              "it was; one that runs out of space keeps the files that were hidden whole, names the others "
              "and exits with 5.",
          .examples =
              "hide holiday.jpg letters/ contract.pdf\n"
              "hide song.wav --compress 9 --title Notes --algorithm TWOFISH notes.txt\n"
              "hide holiday.jpg backup.tar --new --password-file ~/.secret",
          .first = Completion::File,
          .rest = Completion::File,
          .finish = [](ParsedOptions& parsed) {
            parsed.hide.carrier = First(parsed);
            parsed.hide.paths = Rest(parsed);
            parsed.hide.choice = parsed.choice;
            return parsed.hide;
          }};
}

VerbRow List() {
  return {
      .name = "list",
      .operands = {"CARRIER", "[ENTRY...]"},
      .brief = "list the hidden files",
      .text =
          "Lists the hidden files of the hideout that the password opens, newest first: number, size, date "
          "of hiding and path.",
      .more = "",
      .examples =
          "list holiday.jpg\n"
          "list holiday.jpg 'letters/*.txt'\n"
          "list holiday.jpg --json | jq -r '.files[].path'",
      .finish = [](ParsedOptions& parsed) {
        parsed.list.carrier = First(parsed);
        parsed.list.entries = Rest(parsed);
        return parsed.list;
      }};
}

VerbRow Extract() {
  return {
      .name = "extract",
      .operands = {"CARRIER", "[ENTRY...]"},
      .brief = "bring hidden files back",
      .text =
          "Brings hidden files back into a folder: all of them, or the entries that are named. Of several "
          "versions of a file the newest is taken.",
      .more =
          "A file that doesn't authenticate is not written. With --to - one file goes to standard output: "
          "it is read and authenticated as a whole first, and then written. Times of last change come "
          "back where hide kept them.",
      .examples =
          "extract holiday.jpg --to restored\n"
          "extract holiday.jpg contract.pdf letters/2024 --to restored\n"
          "extract holiday.jpg notes.txt --to - | less",
      .finish = [](ParsedOptions& parsed) {
        if (parsed.extract.target.empty())
          throw UsageError("--to DIR is missing; see tarnel-cli extract --help");
        parsed.extract.carrier = First(parsed);
        parsed.extract.entries = Rest(parsed);
        parsed.extract.choice = parsed.choice;
        return parsed.extract;
      }};
}

VerbRow Verify() {
  return {
      .name = "verify",
      .operands = {"CARRIER..."},
      .brief = "say whether the hidden files are intact",
      .text =
          "Reads every hidden file of each carrier's hideout and says whether it is intact. Writes nothing.",
      .more =
          "The last line is the sum. Reports a .bak or .tmp file beside a carrier, which an interrupted run "
          "may have left. Of several carriers the first exit code counts of 7, 9, 12, 10, 8, 1 and 3 that "
          "one of them has.",
      .examples =
          "verify holiday.jpg\n"
          "verify --quiet --password-file ~/.secret ~/Pictures/*.jpg && echo intact",
      .rest = Completion::File,
      .finish = [](ParsedOptions& parsed) {
        parsed.verify.carriers = parsed.operands;
        return parsed.verify;
      }};
}

VerbRow Delete() {
  return {.name = "delete",
          .operands = {"CARRIER", "[ENTRY...]"},
          .brief = "take entries out for good",
          .text =
              "Takes entries out of a hideout for good, a file with all its versions. All other bytes of the "
              "carrier stay as they are.",
          .more = "",
          .examples =
              "delete holiday.jpg contract.pdf\n"
              "delete holiday.jpg '#3' letters/2024 --dry-run",
          .finish = [](ParsedOptions& parsed) {
            parsed.deletion = {First(parsed), Rest(parsed), parsed.choice};
            return parsed.deletion;
          }};
}

VerbRow Update() {
  return {
      .name = "update",
      .operands = {"CARRIER", "ENTRY", "FILE"},
      .brief = "replace the contents of a hidden file",
      .text =
          "Puts the contents of FILE in the place of the hidden file ENTRY, which keeps its name, folder and "
          "permissions. Of several versions the newest is taken.",
      .more = "",
      .examples = "update holiday.jpg letters/draft.txt ~/draft.txt",
      .rest = Completion::File,
      .finish = [](ParsedOptions& parsed) {
        parsed.update = {First(parsed), parsed.operands[1], parsed.operands[2]};
        return parsed.update;
      }};
}

VerbRow Passwd() {
  return {.name = "passwd",
          .operands = {"CARRIER"},
          .brief = "change the password of a hideout",
          .text = "Changes the password of a hideout by encrypting all its entries anew.",
          .more = "",
          .examples =
              "passwd holiday.jpg\n"
              "passwd holiday.jpg --password-file old --new-password-file new",
          .finish = [](ParsedOptions& parsed) {
            parsed.passwd.carrier = First(parsed);
            return parsed.passwd;
          }};
}

VerbRow Search() {
  return {.name = "search",
          .operands = {"DIR"},
          .brief = "find carriers in a folder",
          .text = "Finds the files of a folder that are carriers which the password opens.",
          .more =
              "Each line has the file, and title and algorithm of its hideout. None is no error. Only files "
              "with an extension are looked at.",
          .examples =
              "search --recursive ~/Pictures\n"
              "search --type png --algorithm TWOFISH ~/Pictures",
          .first = Completion::Folder,
          .finish = [](ParsedOptions& parsed) {
            parsed.search.folder = First(parsed);
            return parsed.search;
          }};
}

VerbRow Recover() {
  return {
      .name = "recover",
      .operands = {"CARRIER"},
      .brief = "put things right after an interrupted run or damage",
      .text =
          "After an interrupted run: shows which of the carrier and the copies beside it open with the "
          "password, asks, puts the best one in place and keeps the others under names that end in \".old\". "
          "After damage: shows what is wrong with the carrier's chain of entries and how it can be mended, "
          "asks, and mends it in a new file; the old one is kept too.",
      .more = "",
      .examples =
          "recover holiday.jpg\n"
          "recover --yes --password-file ~/.secret holiday.jpg",
      .finish = [](ParsedOptions& parsed) {
        parsed.recover.carrier = First(parsed);
        return parsed.recover;
      }};
}

VerbRow Salvage() {
  return {.name = "salvage",
          .operands = {"CARRIER"},
          .brief = "bring back what is whole in a damaged carrier",
          .text =
              "Looks through a whole carrier, however damaged, for files that the password opens, and brings "
              "back each that is whole. Changes nothing.",
          .more = "Nothing is overwritten: a file whose name is taken gets a number.",
          .examples = "salvage holiday.jpg --to saved",
          .finish = [](ParsedOptions& parsed) {
            if (parsed.salvage.target.empty())
              throw UsageError("--to DIR is missing; see tarnel-cli salvage --help");
            parsed.salvage.carrier = First(parsed);
            return parsed.salvage;
          }};
}

VerbRow Passphrase() {
  return {.name = "passphrase",
          .operands = {},
          .brief = "propose a pass phrase of random words",
          .text =
              "Prints a pass phrase of random words, each chosen from 7776 with the random numbers of the "
              "system. Six words are worth 77 bits: nobody can try them all. Nothing is stored.",
          .more =
              "The words are the long list for dice of the Electronic Frontier Foundation. What is printed "
              "stays in the memory of the terminal, and in a file to which it is sent.",
          .examples =
              "passphrase\n"
              "passphrase --words 8",
          .first = Completion::Nothing,
          .finish = [](ParsedOptions& parsed) { return parsed.passphrase; }};
}

}  // namespace

const std::vector<VerbRow>& VerbTable() {
  static const std::vector<VerbRow> table = {Hide(),   List(),   Extract(), Verify(),  Delete(),    Update(),
                                             Passwd(), Search(), Recover(), Salvage(), Passphrase()};
  return table;
}

const VerbRow* FindVerb(std::string_view name) {
  const auto found = std::ranges::find(VerbTable(), name, &VerbRow::name);
  return found == VerbTable().end() ? nullptr : &*found;
}

std::string Usage(const VerbRow& verb) {
  std::string usage = verb.name;
  for (const std::string& operand : verb.operands)
    usage += " " + operand;
  const bool needsTarget = verb.name == "extract" || verb.name == "salvage";
  return usage + (needsTarget ? " --to DIR" : "");
}

}  // namespace tarnel
