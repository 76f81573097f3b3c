#include "retrieval/left_previews.h"

#include <unistd.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/destruction.h"
#include "base/temp_names.h"
#include "retrieval/preview.h"
#include "retrieval/questions.h"

namespace tarnel {
namespace {

/// Locked, so that no other program takes it for left behind too.
struct LeftFolder {
  Path path;
  std::unique_ptr<Folder> held;
};

/// Nothing if it is another user's, or a view that is not over.
std::optional<LeftFolder> TakeFolder(const Path& path, Files& files) {
  try {
    const std::optional<FileStat> stat = files.Stat(path, Files::Links::DontFollow);
    if (!stat || stat->kind != FileKind::Folder || stat->owner != ::geteuid()) return std::nullopt;
    std::unique_ptr<Folder> folder = files.OpenFolder(path);
    folder->Lock();
    return LeftFolder{path, std::move(folder)};
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::vector<FolderEntry> EntriesOf(const Path& folder, Files& files) {
  try {
    return files.List(folder);
  } catch (const Error&) {
    return {};
  }
}

std::vector<LeftFolder> LeftFolders(Files& files) {
  std::vector<LeftFolder> left;
  const Path temporary = SystemTempFolder();
  for (const FolderEntry& entry : EntriesOf(temporary, files)) {
    if (!entry.name.starts_with(kPreviewPrefix)) continue;
    if (std::optional<LeftFolder> folder = TakeFolder(temporary / entry.name, files))
      left.push_back(std::move(*folder));
  }
  return left;
}

/// Those in its subfolders too.
std::vector<Path> FilesBelow(const Path& folder, Files& files) {
  std::vector<Path> found;
  std::vector<Path> waiting{folder};
  while (!waiting.empty()) {
    const Path each = std::move(waiting.back());
    waiting.pop_back();
    for (const FolderEntry& entry : EntriesOf(each, files))
      (entry.kind == FileKind::Folder ? waiting : found).push_back(each / entry.name);
  }
  return found;
}

void Destroy(const Path& folder, Dialogue& dialogue, Files& files) {
  bool isGone = true;
  for (const Path& file : FilesBelow(folder, files)) {
    const std::optional<FileStat> stat = files.Stat(file, Files::Links::DontFollow);
    const bool isPlain = stat && stat->kind == FileKind::Regular;
    if (isPlain && !OverwriteAndKill(file, dialogue, files)) isGone = false;
  }
  if (isGone)
    RemovePath(folder, dialogue, files);
  else
    dialogue.Ask(questions::PreviewStays());
}

bool MayDestroy(const std::vector<Path>& plainFiles, Dialogue& dialogue) {
  return dialogue.Ask(questions::PreviewsLeftBehind(plainFiles)) == Answer::Yes;
}

}  // namespace

void OfferLeftPreviews(Dialogue& dialogue, Files& files) {
  std::vector<Path> plainFiles;
  std::vector<LeftFolder> full;
  for (LeftFolder& folder : LeftFolders(files)) {
    const std::vector<Path> inside = FilesBelow(folder.path, files);
    plainFiles.insert(plainFiles.end(), inside.begin(), inside.end());
    if (inside.empty())
      RemovePath(folder.path, dialogue, files);
    else
      full.push_back(std::move(folder));
  }
  if (full.empty() || !MayDestroy(plainFiles, dialogue)) return;
  for (const LeftFolder& folder : full)
    Destroy(folder.path, dialogue, files);
}

void OfferLeftPreview(const Path& folder, Dialogue& dialogue, Files& files) {
  const std::vector<Path> inside = FilesBelow(folder, files);
  if (!inside.empty() && MayDestroy(inside, dialogue)) Destroy(folder, dialogue, files);
}

}  // namespace tarnel
