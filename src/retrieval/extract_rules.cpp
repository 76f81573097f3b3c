#include "retrieval/extract_rules.h"

#include <cmath>

#include "base/closing_separator.h"
#include "carrier/tags.h"
#include "retrieval/pending_file.h"
#include "retrieval/questions.h"
#include "retrieval/work_list.h"

namespace tarnel {
namespace {

/// The target, or the folder in which it is to be made.
Path StandingFolder(const Path& target, Files& files) {
  const Path folder = WithoutClosingSeparator(target);
  return files.Stat(folder) ? folder : folder.parent_path();
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
  return questions::NoSpaceToExtract(target, required, free);
}

}  // namespace tarnel
