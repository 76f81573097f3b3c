#include "hiding/selection.h"

#include <algorithm>
#include <optional>

#include "base/closing_separator.h"
#include "carrier/companions.h"
#include "carrier/stored_text.h"

namespace tarnel {

namespace {

constexpr char kSeparator = '/';

/// What the platform said, without what was tried.
std::string Reason(const Error& error) {
  const std::string description = error.Description();
  const std::size_t colon = description.rfind(": ");
  return "cannot be read: " + (colon == std::string::npos ? description : description.substr(colon + 2));
}

}  // namespace

std::string FolderText(std::string_view parent, std::string_view base) {
  const bool isBase =
      base == parent || (base.ends_with(kSeparator) && base.substr(0, base.size() - 1) == parent);
  if (isBase || parent.size() <= base.size()) return {};
  std::string text;
  std::string_view rest = parent.substr(base.size());
  for (;;) {
    const std::size_t end = rest.find(kSeparator);
    text += ToStored(rest.substr(0, end), TextKind::PathComponent);
    if (end == std::string_view::npos) return text;
    text += '\\';
    rest.remove_prefix(end + 1);
  }
}

Selection::Selection(Files& files, SelectionScreen& screen) : m_files(files), m_screen(screen) {}

void Selection::KeepOut(const Path& carrier) {
  for (const Path& path : {carrier, BackupPath(carrier), TemporaryCarrierPath(carrier)}) {
    m_keptOut.push_back(path.lexically_normal());
    try {
      if (const auto stat = m_files.Stat(path)) m_keptOutStats.push_back(*stat);
    } catch (const Error&) {  // its path is known
    }
  }
}

bool Selection::IsKeptOut(const Path& file, const FileStat& stat) const {
  if (std::find(m_keptOut.begin(), m_keptOut.end(), file.lexically_normal()) != m_keptOut.end()) return true;
  return std::any_of(m_keptOutStats.begin(), m_keptOutStats.end(),
                     [&stat](const FileStat& own) { return own.IsSameFile(stat); });
}

void Selection::Begin(Before before) {
  m_foldersCounted = 0;
  m_passed.clear();
  if (before == Before::Kept) return;
  m_collected.clear();
  m_paths.clear();
  m_totalBytes = 0;
}

void Selection::AddFile(const Path& file, std::string_view base) {
  try {
    if (const std::optional<FileStat> stat = m_files.Stat(file))
      AddIfRegular(file, *stat, base);
    else if (m_files.Stat(file, Files::Links::DontFollow))
      m_passed.push_back({file, "is a link that leads nowhere"});
  } catch (const Error& error) {
    m_passed.push_back({file, Reason(error)});
  }
}

void Selection::AddIfRegular(const Path& file, const FileStat& stat, std::string_view base) {
  if (stat.kind == FileKind::Folder) return PassOverFolder(file);
  if (stat.kind != FileKind::Regular) {
    m_passed.push_back({file, "is a pipe, a socket or a device"});
    return;
  }
  if (IsKeptOut(file, stat)) {
    m_passed.push_back({file, "is the carrier or belongs to it"});
    return;
  }
  if (!m_paths.insert(file.native()).second) return;
  m_collected.push_back({.source = file,
                         .name = file.filename().native(),
                         .folder = FolderText(file.parent_path().native(), base),
                         .size = stat.size});
  m_totalBytes += stat.size;
  m_screen.ShowAdded(file, m_collected.size());
  m_screen.Yield();
}

void Selection::PassOverFolder(const Path& folder) {
  const std::optional<FileStat> own = m_files.Stat(folder, Files::Links::DontFollow);
  if (own && own->kind == FileKind::SymbolicLink) m_passed.push_back({folder, "is a link to a folder"});
}

void Selection::WalkFolder(const Path& folder, std::string_view base) {
  ++m_foldersCounted;
  std::vector<Path> waiting;  // the next one last
  AddFilesOf(WithoutClosingSeparator(folder), base, waiting);
  while (!waiting.empty()) {
    ++m_foldersCounted;
    if (m_screen.CancelRequested()) return;
    ++m_foldersCounted;
    const Path next = std::move(waiting.back());
    waiting.pop_back();
    AddFilesOf(next, base, waiting);
    m_screen.Yield();
  }
}

void Selection::AddFilesOf(const Path& folder, std::string_view base, std::vector<Path>& waiting) {
  std::vector<FolderEntry> entries;
  try {
    entries = m_files.List(folder);
  } catch (const Error& error) {
    m_passed.push_back({folder, Reason(error)});
  }
  const auto isFolder = [](const FolderEntry& entry) { return entry.kind == FileKind::Folder; };
  const auto folders = std::count_if(entries.begin(), entries.end(), isFolder);
  m_screen.ShowFolder(folder, entries.size() - static_cast<std::size_t>(folders));
  for (const FolderEntry& entry : entries) {
    if (m_screen.CancelRequested()) return;
    if (isFolder(entry)) continue;
    m_screen.EntryPassed();
    AddFile(folder / entry.name, base);
  }
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
    if (entry->kind == FileKind::Folder) waiting.push_back(folder / entry->name);
}

void Selection::AddWholeFolder(const Path& folder) {
  const Path whole = WithoutClosingSeparator(folder);
  std::string base = whole.parent_path().native();
  if (!base.empty() && !base.ends_with(kSeparator)) base += kSeparator;
  WalkFolder(whole, base);
}

void Selection::Remove(const std::vector<std::size_t>& rows) {
  std::vector<HideRow> kept = Rows();
  for (const std::size_t row : rows) {
    m_totalBytes -= SizeIfThere(kept[row].source);
    m_paths.erase(kept[row].source.native());
    kept[row].source.clear();
  }
  std::erase_if(kept, [](const HideRow& row) { return row.source.empty(); });
  m_foldersCounted = FoldersAmong(kept);
  m_collected.assign(kept.rbegin(), kept.rend());
}

Length Selection::SizeIfThere(const Path& file) {
  try {
    const std::optional<FileStat> stat = m_files.Stat(file);
    return stat ? stat->size : 0;
  } catch (const Error&) {
    return 0;
  }
}

long Selection::FoldersAmong(const std::vector<HideRow>& rows) {
  long count = 0;
  std::string_view remembered;
  for (const HideRow& row : rows) {
    if (row.folder.empty()) continue;
    if (row.folder != remembered) ++count;
    remembered = row.folder;
  }
  return count;
}

std::vector<HideRow> Selection::Rows() const {
  return {m_collected.rbegin(), m_collected.rend()};
}

}  // namespace tarnel
