#include "hiding/originals.h"

#include <algorithm>
#include <optional>

#include "base/destruction.h"
#include "base/pace.h"
#include "hiding/questions.h"

namespace tarnel {

OriginalsRemoval::OriginalsRemoval(const HideRequest& request, const Path& carrier, Files& files,
                                   HideScreen& screen, const ErrorHandler& handler)
    : m_request(request), m_carrier(carrier), m_files(files), m_screen(screen), m_handler(handler) {}

void OriginalsRemoval::Run(const std::vector<std::size_t>& hidden, const std::vector<std::size_t>& readBack) {
  NoteWhatShouldGo(hidden, readBack);
  if (readBack.empty()) return;
  if (Attempt(m_screen, m_handler, [&] { KeepTheRest(readBack); }) == Outcome::Ignored) return;
  if (m_request.originals == Originals::Destroy) {
    for (const std::size_t row : readBack)
      Attempt(m_screen, m_handler, [&] { DestroyFile(m_request.rows[row].source); });
    for (const Path& path : m_request.chosen)
      Attempt(m_screen, m_handler, [&] { DestroyFolderWithoutFiles(path); });
  }
  if (m_request.originals == Originals::Trash) MoveChosenToTrash();
}

void OriginalsRemoval::NoteWhatShouldGo(const std::vector<std::size_t>& hidden,
                                        const std::vector<std::size_t>& readBack) {
  const bool isTrash = m_request.originals == Originals::Trash;
  for (const std::size_t row : hidden)
    if (!isTrash || !std::binary_search(readBack.begin(), readBack.end(), row))
      m_shouldGo.push_back(m_request.rows[row].source);
  if (isTrash) m_shouldGo.insert(m_shouldGo.end(), m_request.chosen.begin(), m_request.chosen.end());
}

void OriginalsRemoval::KeepTheRest(const std::vector<std::size_t>& readBack) {
  Keep(m_carrier);
  for (std::size_t row = 0; row < m_request.rows.size(); ++row)
    if (!std::binary_search(readBack.begin(), readBack.end(), row)) Keep(m_request.rows[row].source);
}

void OriginalsRemoval::Keep(const Path& path) {
  KeepOne(path, Files::Links::DontFollow);
  KeepOne(path, Files::Links::Follow);
  // Climbing by ".." finds the folders that really hold the file, whatever links its path goes through.
  for (Path folder = path.parent_path() / "."; KeepOne(folder, Files::Links::Follow);)
    folder /= "..";
}

bool OriginalsRemoval::KeepOne(const Path& path, Files::Links links) {
  const std::optional<FileStat> stat = m_files.Stat(path, links);
  return stat && m_kept.insert({stat->device, stat->inode}).second;
}

void OriginalsRemoval::DestroyFile(const Path& path) {
  if (HoldsKept(path)) return;
  if (!OverwriteAndKill(path, m_screen, m_files) && IsThere(path)) m_files.Remove(path);
}

void OriginalsRemoval::DestroyFolderWithoutFiles(const Path& path) {
  const std::optional<FileStat> stat = m_files.Stat(path, Files::Links::DontFollow);
  if (!stat || stat->kind != FileKind::Folder || HasDirectFiles(path)) return;
  m_shouldGo.push_back(path);
  if (!HoldsKept(path)) RemovePath(path, m_screen, m_files);
}

bool OriginalsRemoval::HasDirectFiles(const Path& folder) {
  const std::vector<FolderEntry> entries = m_files.List(folder);
  return std::any_of(entries.begin(), entries.end(),
                     [](const FolderEntry& entry) { return entry.kind != FileKind::Folder; });
}

void OriginalsRemoval::MoveChosenToTrash() {
  std::vector<Path> paths;
  for (const Path& path : m_request.chosen)
    Attempt(m_screen, m_handler, [&] {
      if (!HoldsKept(path)) paths.push_back(path);
    });
  if (!ShellDelete(paths, m_screen, m_files).Succeeded()) m_screen.Ask(TrashFailedQuestion());
}

bool OriginalsRemoval::HoldsKept(const Path& path) {
  const std::optional<FileStat> stat = m_files.Stat(path, Files::Links::DontFollow);
  return stat && m_kept.contains({stat->device, stat->inode});
}

std::vector<Path> OriginalsRemoval::Left() {
  std::vector<Path> left;
  std::set<Path> seen;
  Pace pace(m_screen);
  for (const Path& path : m_shouldGo) {
    if (seen.insert(path).second && IsThere(path)) left.push_back(path);
    pace.Step();
  }
  return left;
}

/// What can't be looked at counts as there.
bool OriginalsRemoval::IsThere(const Path& path) {
  try {
    return m_files.Stat(path, Files::Links::DontFollow).has_value();
  } catch (const Error&) {
    return true;
  }
}

}  // namespace tarnel
