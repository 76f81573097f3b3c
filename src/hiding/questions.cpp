#include "hiding/questions.h"

#include <string>
#include <utility>

#include "base/attempt.h"
#include "base/printable.h"

namespace tarnel {

namespace {

constexpr const char* kTitle = "Tarnel";

Question Report(const char* id, std::string text, Icon icon) {
  return {.id = id, .title = kTitle, .text = std::move(text), .icon = icon};
}

void AddPaths(Question& report, const char* what, const std::vector<Path>& paths) {
  for (const Path& path : paths)
    report.list.push_back(what + Printable(path.native()));
}

std::string CountOfFiles(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " file is" : " files are");
}

}  // namespace

Question HideErrorQuestion(const Error& error) {
  return ErrorQuestion(error, "hide.error", kTitle, LineBreak::LfCr, Answer::Retry);
}

Question NoSpaceQuestion(const Path& drive, Length required) {
  return {.id = "hide.no-space",
          .title = kTitle,
          .text = "Not enough free space on the drive: (" + Printable(drive.native()) +
                  ") to hide the data. Required: " + std::to_string(required) + " bytes of free space!",
          .buttons = Buttons::RetryCancel,
          .icon = Icon::Critical,
          .preset = Answer::Retry};
}

Question TooLargeQuestion(const Path& carrier) {
  return {.id = "hide.too-large",
          .title = kTitle,
          .text = "Nothing was hidden: " + Printable(carrier.filename().native()) +
                  " would reach 2 GiB, and a carrier file must stay below that. Please hide fewer or smaller "
                  "files, compress them, or choose another carrier file.",
          .buttons = Buttons::Ok,
          .icon = Icon::Information};
}

Question TrashFailedQuestion() {
  return {.id = "hide.trash-failed",
          .title = kTitle,
          .text = "Deletion failed. Please move the original files to recycle bin.",
          .buttons = Buttons::Ok,
          .icon = Icon::Critical};
}

Question CancelHideQuestion() {
  return {.id = "hide.cancel",
          .title = "Tarnel [Hiding...]",
          .text = "Do you really want to cancel this procedure?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

Question DeleteOriginalsQuestion() {
  return {.id = "hide.delete-originals",
          .title = kTitle,
          .text = "Do you really want to delete original files, with no chance for undelete?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

Question NoFilesQuestion() {
  return {.id = "hide.no-files",
          .title = kTitle,
          .text = "There are no files to hide!",
          .buttons = Buttons::Ok,
          .icon = Icon::Information};
}

Question NothingSpecifiedQuestion() {
  return {.id = "hide.nothing-specified",
          .title = kTitle,
          .text = "Please specify files or folders you want to hide!",
          .buttons = Buttons::Ok,
          .icon = Icon::Information};
}

Question BadNameQuestion() {
  return {.id = "hide.bad-name",
          .title = kTitle,
          .text = "Invalid file name. File names may not contain the\r\nfollowing characters: " +
                  std::string(kRefusedInNames),
          .buttons = Buttons::Ok,
          .icon = Icon::Critical};
}

std::optional<Question> HideReport(const HideResult& result, const Path& carrier) {
  const std::string name = Printable(carrier.filename().native());
  Question report = Report("hide.report", "Not everything was done as it was asked for:", Icon::Information);
  if (result.ending == HideEnding::NoSpace)
    report = Report("hide.report",
                    "The disk is full. " + CountOfFiles(result.hidden) + " hidden in " + name +
                        "; all originals are in place.",
                    Icon::Critical);
  if (result.ending == HideEnding::Aborted)
    report = Report(
        "hide.report",
        result.isComplete
            ? CountOfFiles(result.hidden) + " hidden in " + name + ", but what was to follow was aborted."
            : "Hiding was aborted." + (result.backup.empty() ? " " + name + " is as it was." : std::string()),
        Icon::Critical);
  if (!result.backup.empty()) {
    report.text += " " + name + " may be damaged. The file as it was before is intact:";
    report.list.push_back(Printable(result.backup.native()));
  }
  AddPaths(report, "not hidden: ", result.leftOut);
  AddPaths(report, "original still there: ", result.originalsLeft);
  if (!result.needlessBackup.empty())
    report.list.push_back("backup that is needed no more: " + Printable(result.needlessBackup.native()));
  const bool isQuiet = result.ending != HideEnding::NoSpace && result.ending != HideEnding::Aborted;
  if (isQuiet && report.list.empty()) return std::nullopt;
  return report;
}

std::optional<Question> PassedOverReport(const std::vector<PassedOver>& passed) {
  if (passed.empty()) return std::nullopt;
  Question report =
      Report("hide.passed-over", "This can't be hidden and was passed over:", Icon::Information);
  for (const PassedOver& each : passed)
    report.list.push_back(Printable(each.path.native()) + " " + each.reason);
  return report;
}

}  // namespace tarnel
