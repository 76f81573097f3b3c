#include "hiding/explorer_list.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/attempt.h"
#include "base/formats.h"
#include "base/pace.h"
#include "hiding/questions.h"

namespace tarnel {

namespace {

constexpr std::string_view kTag = "*Folder*";

std::string Lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

bool IsShortcut(const std::string& name) {
  return Lower(Path(name).extension().native()) == ".lnk";
}

}  // namespace

bool ExplorerRow::IsFolder() const {
  return tag.starts_with(kTag);
}

Path ExplorerRow::FolderPath() const {
  return IsFolder() ? Path(tag.substr(kTag.size())) : Path();
}

std::string ExplorerSize(const ExplorerRow& row) {
  return row.image >= 0 ? std::string() : GroupedKilobytes(static_cast<double>(row.size));
}

std::string ExplorerModified(const ExplorerRow& row) {
  return row.image >= 0 ? std::string() : DottedDateAndTime(row.modified);
}

ExplorerList::ExplorerList(Files& files, TypeText typeTextOf)
    : m_files(files), m_typeTextOf(std::move(typeTextOf)) {}

void ExplorerList::Show(const Path& folder, Force force, const Fill& fill) {
  if (folder.empty() || (force == Force::No && folder == m_currentFolder)) return;
  if (m_isFilling) {
    m_isPending = true;
    m_pendingFolder = folder;
    return;
  }
  m_currentFolder = folder;
  for (;;) {
    FillOnce(fill);
    if (!std::exchange(m_isPending, false) || m_pendingFolder.empty()) break;
    m_currentFolder = std::exchange(m_pendingFolder, {});
  }
}

void ExplorerList::FillOnce(const Fill& fill) {
  m_rows.clear();
  m_sorting.reset();
  m_isFilling = true;
  fill.changed();
  try {
    m_rows = fill.listChildren();
    if (m_currentFolder != kMyComputer) AddFiles(fill);
  } catch (...) {
    m_isFilling = false;
    fill.changed();
    throw;
  }
  m_isFilling = false;
  fill.changed();
}

/// False if another folder is wanted.
bool ExplorerList::AddFiles(const Fill& fill) {
  fill.dialogue.Yield();
  std::vector<FolderEntry> entries;
  try {
    Attempt(fill.dialogue, {HideErrorQuestion}, [&] {
      if (m_files.Stat(m_currentFolder)) entries = m_files.List(m_currentFolder);
    });
  } catch (const Stop&) {
    return true;
  }
  Pace pace(fill.dialogue);
  for (const FolderEntry& entry : entries) {
    if (m_isPending) return false;
    if (entry.kind == FileKind::Folder || IsShortcut(entry.name)) continue;
    if (auto row = FileRow(m_currentFolder / entry.name)) m_rows.push_back(std::move(*row));
    pace.Step();
  }
  return true;
}

/// Nothing for what has gone meanwhile, and for a link to a folder: the tree has none of these either.
std::optional<ExplorerRow> ExplorerList::FileRow(const Path& path) {
  ExplorerRow row{.key = path, .text = path.filename().native(), .tag = {}};
  try {
    std::optional<FileStat> stat = m_files.Stat(path);
    if (!stat) stat = m_files.Stat(path, Files::Links::DontFollow);
    if (!stat || stat->kind == FileKind::Folder) return std::nullopt;
    row.size = stat->size;
    row.modified = stat->created;
  } catch (const Error&) {  // its name is there all the same
  }
  return row;
}

void ExplorerList::StopFilling() {
  if (m_isFilling) m_isPending = true;
  m_pendingFolder.clear();
}

bool ExplorerList::IsOfCurrent(const Path& path) const {
  return path.has_filename() && path.parent_path() / "" == m_currentFolder / "";
}

bool ExplorerList::FileCreated(const Path& path) {
  if (m_isFilling || !IsOfCurrent(path) || IsShortcut(path.filename().native())) return false;
  FileRemoved(path);
  if (auto row = FileRow(path)) m_rows.push_back(std::move(*row));
  return true;
}

bool ExplorerList::FileRemoved(const Path& path) {
  if (m_isFilling) return false;
  return std::erase_if(m_rows, [&](const ExplorerRow& row) { return row.image < 0 && row.key == path; }) > 0;
}

bool ExplorerList::FileRenamed(const Path& from, const Path& to) {
  const auto row = std::find_if(m_rows.begin(), m_rows.end(),
                                [&](const ExplorerRow& each) { return each.image < 0 && each.key == from; });
  if (row == m_rows.end() || !IsOfCurrent(to)) {
    const bool wasThere = FileRemoved(from);
    return FileCreated(to) || wasThere;
  }
  row->key = to;
  row->text = to.filename().native();
  return true;
}

void ExplorerList::ColumnClick(ExplorerColumn column) {
  const bool isSame = m_sorting && m_sorting->column == column;
  m_sorting = {column, isSame && !m_sorting->isDescending};
  const auto key = [&](const ExplorerRow& row) -> std::string {
    switch (column) {
      case ExplorerColumn::File:
        return Lower(row.text);
      case ExplorerColumn::Type:
        return row.image >= 0 ? std::string() : Lower(m_typeTextOf(row.text));
      default:
        return {};
    }
  };
  const auto number = [&](const ExplorerRow& row) -> std::int64_t {
    if (column == ExplorerColumn::File || column == ExplorerColumn::Type) return 0;
    if (row.image >= 0) return -1;
    return column == ExplorerColumn::Size ? row.size : static_cast<std::int64_t>(row.modified);
  };
  struct Keyed {
    std::int64_t number;
    std::string text;
    ExplorerRow row;
  };
  std::vector<Keyed> keyed;
  keyed.reserve(m_rows.size());
  for (ExplorerRow& row : m_rows)
    keyed.push_back({number(row), key(row), std::move(row)});
  std::stable_sort(keyed.begin(), keyed.end(), [this](const Keyed& a, const Keyed& b) {
    const auto& [first, second] = m_sorting->isDescending ? std::tie(b, a) : std::tie(a, b);
    return std::tie(first.number, first.text) < std::tie(second.number, second.text);
  });
  const bool wipesTags = column == ExplorerColumn::Size || column == ExplorerColumn::Modified;
  for (std::size_t i = 0; i < keyed.size(); ++i) {
    m_rows[i] = std::move(keyed[i].row);
    if (wipesTags) m_rows[i].tag.clear();
  }
}

ExplorerList::Renamed ExplorerList::Rename(std::size_t row, const std::string& name, const Path& folder) {
  ExplorerRow& renamed = m_rows.at(row);
  if (name.empty() || name == renamed.text) return Renamed::Nothing;
  if (name.find_first_of(kRefusedInNames) != std::string::npos) return Renamed::BadName;
  m_files.RenameNoReplace(folder / renamed.text, folder / name);
  renamed.text = name;
  renamed.key = folder / name;
  if (renamed.IsFolder()) renamed.tag = std::string(kTag) + (folder / name / "").native();
  return Renamed::Done;
}

}  // namespace tarnel
