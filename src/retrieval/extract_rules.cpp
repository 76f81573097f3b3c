#include "retrieval/extract_rules.h"

#include <cmath>
#include <string>

#include "base/formats.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "retrieval/pending_file.h"
#include "retrieval/work_list.h"

namespace tarnel {
namespace {

constexpr const char* kTitle = "Tarnel";

Path WithoutClosingSeparator(const Path& folder) {
  return folder.has_filename() || folder == folder.root_path() ? folder : folder.parent_path();
}

/// The target, or the folder in which it is to be made.
Path StandingFolder(const Path& target, Files& files) {
  const Path folder = WithoutClosingSeparator(target);
  return files.Stat(folder) ? folder : folder.parent_path();
}

void AddNames(Question& report, const char* what, const std::vector<std::string>& stored) {
  for (const std::string& name : stored)
    report.list.push_back(what + Printable(ToPlatform(name)));
}

}  // namespace

bool CanExtractTo(const Path& entered) {
  return entered.is_absolute();
}

std::optional<Path> FolderToShow(const Path& entered, Files& files) {
  if (!entered.is_absolute()) return std::nullopt;
  try {
    const std::optional<FileStat> found = files.Stat(entered);
    if (found && found->kind == FileKind::Folder) return entered;
  } catch (const Error&) {  // what can't be looked at can't be shown
  }
  return std::nullopt;
}

void MustTakeFiles(const Path& target, Files& files) {
  const std::unique_ptr<Folder> folder = files.OpenFolder(StandingFolder(target, files));
  const PendingFile trial(*folder);
}

double PlainBytes(const ExtractRequest& request, const Catalogue& catalogue) {
  double sum = 0;
  for (const std::size_t row : ExtractWorkList(request, catalogue)) {
    const double size = ReadNumber(catalogue.Rows().at(row).Field(tag::kPlainSize));
    if (std::isfinite(size) && size > 0) sum += size;
  }
  return sum;
}

std::optional<Question> SpaceQuestion(const Path& target, double required, Files& files) {
  std::int64_t free = 0;
  try {
    free = files.FreeSpace(StandingFolder(target, files));
  } catch (const Error&) {  // a disk that is full will say so
    return std::nullopt;
  }
  if (static_cast<double>(free) >= required) return std::nullopt;
  return Question{.id = "extract.no-space",
                  .title = kTitle,
                  .text = "Not enough free space in: (" + Printable(target.native()) +
                          ") to extract the files. Required: " + PlainNumber(required) +
                          " bytes of free space, there are: " + std::to_string(free) +
                          ".\r\n\r\nDo you want to extract all the same?",
                  .buttons = Buttons::YesNo,
                  .icon = Icon::Question,
                  .preset = Answer::No};
}

Question TargetRefused(const Error& error) {
  return {.id = "extract.refused",
          .title = kTitle,
          .text = "Nothing can be extracted there: " + error.Description() + ".",
          .buttons = Buttons::Ok,
          .icon = Icon::Critical,
          .cause = error};
}

std::optional<Question> ExtractReport(const ExtractResult& result) {
  Question report{.id = "extract.report",
                  .title = kTitle,
                  .text = "Not everything was extracted:",
                  .buttons = Buttons::Ok,
                  .icon = result.damaged.empty() ? Icon::Information : Icon::Critical};
  AddNames(report, "damaged: ", result.damaged);
  AddNames(report, "left out: ", result.leftOut);
  for (const Path& kept : result.keptExisting)
    report.list.push_back("existing file kept: " + Printable(kept.native()));
  if (report.list.empty()) return std::nullopt;
  return report;
}

}  // namespace tarnel
