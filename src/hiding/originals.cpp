#include "hiding/originals.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/destruction.h"
#include "base/pace.h"
#include "hiding/questions.h"

namespace tarnel {

namespace {

bool IsOnOrBelow(const Path& path, const Path& folder) {
  const std::string& below = folder.native();
  if (!path.native().starts_with(below)) return false;
  return path.native().size() == below.size() || below.ends_with('/') || path.native()[below.size()] == '/';
}

bool IsOnOrBelowAny(std::string_view path, const std::set<std::string_view>& folders) {
  while (!path.empty() && !folders.contains(path))
    path = path.substr(0, std::min(path.rfind('/'), path.size() - 1));
  return !path.empty();
}

}  // namespace

OriginalsRemoval::OriginalsRemoval(const HideRequest& request, const Path& carrier, Files& files,
                                   HideScreen& screen, const ErrorHandler& handler)
    : m_request(request), m_carrier(carrier), m_files(files), m_screen(screen), m_handler(handler) {}

void OriginalsRemoval::Expect(const std::vector<std::size_t>& hidden) {
  m_hidden = hidden;
  NoteWhatShouldGo();
}

void OriginalsRemoval::Run(const std::vector<RowReadBack>& readBack) {
  m_readBack = readBack;
  NoteWhatShouldGo();
  if (m_readBack.empty()) return;
  if (Attempt(m_screen, m_handler, [&] { KeepTheRest(); }) == Outcome::Ignored) return;
  if (m_request.originals == Originals::Destroy) {
    std::size_t number = 0;
    for (const RowReadBack& row : m_readBack) {
      ShowRemoving(m_request.rows[row.row].source, ++number);
      Attempt(m_screen, m_handler, [&] { DestroyFile(row); });
    }
    for (const Path& path : m_request.chosen) {
      ShowRemoving(path, 0);
      Attempt(m_screen, m_handler, [&] { DestroyFolderWithoutFiles(path); });
    }
  }
  if (m_request.originals == Originals::Trash) MoveChosenToTrash();
}

void OriginalsRemoval::ShowRemoving(const Path& path, std::size_t number) {
  m_screen.ShowOriginal(OriginalStep::Removing, path, number, m_readBack.size());
}

bool OriginalsRemoval::IsReadBack(std::size_t row) const {
  return std::binary_search(m_readBack.begin(), m_readBack.end(), RowReadBack{row, {}},
                            [](const RowReadBack& a, const RowReadBack& b) { return a.row < b.row; });
}

/// The trash takes what was chosen last. Rows from elsewhere stay, and the person who asked for the trash has
/// to hear that too.
void OriginalsRemoval::NoteWhatShouldGo() {
  m_shouldGo.clear();
  const bool isTrash = m_request.originals == Originals::Trash;
  std::set<std::string_view> going;
  if (isTrash)
    for (const Path& path : m_request.chosen)
      going.insert(path.native());
  for (const std::size_t row : m_hidden) {
    const Path& source = m_request.rows[row].source;
    if (!IsReadBack(row) || !IsOnOrBelowAny(source.native(), going)) NoteFile(source);
  }
  if (isTrash) m_shouldGo.insert(m_shouldGo.end(), m_request.chosen.begin(), m_request.chosen.end());
}

/// Of a link only the link is destroyed, and the person who asked for destruction has to hear that.
void OriginalsRemoval::NoteFile(const Path& path) {
  m_shouldGo.push_back(path);
  if (m_request.originals != Originals::Destroy) return;
  try {
    const std::optional<FileStat> stat = m_files.Stat(path, Files::Links::DontFollow);
    if (stat && stat->kind == FileKind::SymbolicLink) m_shouldGo.push_back(m_files.Canonical(path));
  } catch (const Error&) {  // a link that leads nowhere keeps nothing from going
  }
}

void OriginalsRemoval::KeepTheRest() {
  Keep(m_carrier);
  for (std::size_t row = 0; row < m_request.rows.size(); ++row)
    if (!IsReadBack(row)) Keep(m_request.rows[row].source);
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

void OriginalsRemoval::DestroyFile(const RowReadBack& row) {
  const Path& path = m_request.rows[row.row].source;
  const std::optional<FileStat> found = m_files.Stat(path, Files::Links::DontFollow);
  if (!found || HoldsKept(path)) return;
  const Destroyed outcome = OverwriteAndKillAsSeen(path, row.seen, m_screen, m_files);
  const bool isLink = found->kind == FileKind::SymbolicLink;
  if (!isLink && (outcome == Destroyed::Gone || outcome == Destroyed::Spoilt)) LookAgain(row.seen);
  if (outcome == Destroyed::Gone) return;
  if (outcome != Destroyed::Changed && IsTheOne(path, row.seen, outcome)) return m_files.Remove(path);
  Keep(path);
}

/// Whether what could not be destroyed is still what was to be.
bool OriginalsRemoval::IsTheOne(const Path& path, const FileStat& seen, Destroyed outcome) {
  const std::optional<FileStat> now = m_files.Stat(path, Files::Links::DontFollow);
  if (!now || now->kind == FileKind::SymbolicLink) return now.has_value();
  return outcome == Destroyed::Spoilt ? now->IsSameFile(seen) : now->IsUntouchedSince(seen);
}

/// A file that is overwritten here is as good as seen: a row can be another name of it, and the row itself
/// may be tried again.
void OriginalsRemoval::LookAgain(FileStat destroyed) {
  for (RowReadBack& other : m_readBack) {
    if (!other.seen.IsSameFile(destroyed)) continue;
    const std::optional<FileStat> now = m_files.Stat(m_request.rows[other.row].source);
    if (now && now->IsSameFile(destroyed)) other.seen = *now;
  }
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
  const auto mayGo = [this](const Path& path) {
    ShowRemoving(path, 0);
    return MayGoToTrash(path);
  };
  if (!ShellDelete(paths, m_screen, m_files, mayGo).Succeeded()) m_screen.Ask(TrashFailedQuestion());
}

/// The originals on or below the path are still those that were compared.
bool OriginalsRemoval::MayGoToTrash(const Path& path) {
  for (const RowReadBack& row : m_readBack) {
    const Path& source = m_request.rows[row.row].source;
    if (!IsOnOrBelow(source, path)) continue;
    const std::optional<FileStat> now = m_files.Stat(source);
    if (now && !now->IsUntouchedSince(row.seen)) return false;
  }
  return true;
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
