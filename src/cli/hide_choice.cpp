#include "cli/hide_choice.h"

#include <algorithm>

#include "base/printable.h"
#include "cli/entries.h"
#include "cli/globs.h"
#include "hiding/questions.h"

namespace tarnel {

namespace {

constexpr const char* kInput = "-";

bool IsBelow(const Path& path, const Path& folder) {
  const std::string& text = path.native();
  const std::string front = folder == folder.root_path() ? folder.native() : folder.native() + "/";
  return text.size() > front.size() && text.starts_with(front);
}

}  // namespace

HideChoice::HideChoice(const HideOptions& options, Surroundings& around)
    : m_options(options), m_around(around), m_screen(around.talk), m_selection(around.files, m_screen) {}

void HideChoice::Collect() {
  std::vector<std::string> given = m_options.paths;
  if (m_options.choice.filesFrom)
    std::ranges::move(ReadNameList(*m_options.choice.filesFrom), std::back_inserter(given));
  if (given.empty()) throw CliFailure(ExitCode::Usage, "PATH is missing; see tarnel-cli hide --help");
  const bool takesInput = std::ranges::find(given, kInput) != given.end();
  if (takesInput != m_options.name.has_value())
    throw CliFailure(ExitCode::Usage, "what comes through standard input is PATH - with --name NAME");
  for (const std::string& path : given)
    path == kInput ? TakeInput() : Name(path);
  for (const Named& named : m_named) {
    if (named.isFolder)
      m_selection.AddWholeFolder(named.path);
    else
      m_selection.AddFile(named.path, named.path.parent_path().native());
  }
  if (m_around.talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
  TakeRows();
  Say();
  if (m_rows.empty()) throw CliFailure(ExitCode::Failed, NoFilesQuestion().text);
}

void HideChoice::Name(const std::string& given) {
  const Path full = FullPath(given, m_around.files);
  const std::optional<FileStat> stat = m_around.files.Stat(full);
  if (!stat) throw CliFailure(ExitCode::Failed, "cannot find " + Printable(given) + "; nothing was hidden");
  m_around.messages.ShowAs(full, given);
  m_named.push_back({.path = full, .isFolder = stat->kind == FileKind::Folder});
}

void HideChoice::TakeInput() {
  if (m_options.originals != Originals::Keep)
    throw CliFailure(ExitCode::Usage, "what comes through standard input has no original to remove");
  if (m_input) throw CliFailure(ExitCode::Usage, "standard input can't be two files");
  m_input.emplace();
  m_rows.push_back({.source = m_input->Path(), .name = *m_options.name, .folder = {}});
  m_totalBytes += m_around.files.Stat(m_input->Path())->size;
}

/// The collected rows without what is excluded, and without links.
void HideChoice::TakeRows() {
  std::vector<std::size_t> dropped;
  const std::vector<HideRow> all = m_selection.Rows();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Path& source = all[i].source;
    const bool isExcluded = IsExcluded(source);
    const bool isLink = !isExcluded && IsLinkToPassOver(source);
    if (isLink) PassOver(source, "is a link; --follow hides what it leads to");
    if (isExcluded || isLink) dropped.push_back(i);
  }
  for (const tarnel::PassedOver& passed : m_selection.Passed())
    if (!IsExcluded(passed.path)) PassOver(passed.path, passed.reason);
  m_selection.Remove(dropped);
  std::ranges::move(m_selection.Rows(), std::back_inserter(m_rows));
  m_totalBytes += m_selection.TotalSelectedBytes();
  for (const Named& named : m_named)
    if (named.isFolder) FindEmptyFolders(named.path);
}

HideChoice::Named* HideChoice::FolderAbove(const Path& path) {
  const auto found = std::ranges::find_if(
      m_named, [&](const Named& named) { return named.isFolder && IsBelow(path, named.path); });
  return found == m_named.end() ? nullptr : &*found;
}

/// A glob sees the path as it becomes an entry's.
bool HideChoice::IsExcluded(const Path& path) {
  if (m_options.choice.exclude.empty()) return false;
  Named* above = FolderAbove(path);
  const std::string shown =
      above ? path.lexically_relative(above->path.parent_path()).native() : path.filename().native();
  const bool isExcluded = AnyGlobMatches(m_options.choice.exclude, shown);
  if (isExcluded && above) above->isLeftStanding = true;
  return isExcluded;
}

bool HideChoice::IsLinkToPassOver(const Path& path) {
  const bool isNamed = std::ranges::find(m_named, path, &Named::path) != m_named.end();
  if (m_options.follow || isNamed) return false;
  const std::optional<FileStat> own = m_around.files.Stat(path, Files::Links::DontFollow);
  return own && own->kind == FileKind::SymbolicLink;
}

void HideChoice::PassOver(const Path& path, const std::string& reason) {
  if (Named* above = FolderAbove(path)) above->isLeftStanding = true;
  m_passedOver.push_back(path);
  m_around.messages.Warn("passed over: " + Printable(path.native()) + " " + reason);
}

void HideChoice::FindEmptyFolders(const Path& folder) {
  std::vector<Path> waiting = {folder};
  while (!waiting.empty()) {
    const Path next = std::move(waiting.back());
    waiting.pop_back();
    if (IsExcluded(next)) continue;
    try {
      const std::vector<FolderEntry> entries = m_around.files.List(next);
      if (entries.empty()) m_emptyFolders.push_back(next);
      for (const FolderEntry& entry : entries)
        if (entry.kind == FileKind::Folder) waiting.push_back(next / entry.name);
    } catch (const Error&) {  // collecting has said so
    }
  }
}

void HideChoice::Say() {
  m_around.report["passed_over"] = JsonOfNames(m_passedOver);
  m_around.report["empty_folders"] = JsonOfNames(m_emptyFolders);
  for (const Path& folder : m_emptyFolders)
    m_around.messages.Note("passed over: the empty folder " + Printable(folder.native()));
}

std::vector<std::string> HideChoice::EntryPaths() const {
  std::vector<std::string> paths;
  for (const HideRow& row : m_rows) {
    const std::string folder = m_options.noFolders ? "" : FolderOfEntry(row.folder);
    paths.push_back((folder.empty() ? "" : folder + "/") + row.name);
  }
  return paths;
}

std::vector<Path> HideChoice::Removable() const {
  std::vector<Path> removable;
  for (const Named& named : m_named) {
    if (!named.isLeftStanding) {
      removable.push_back(named.path);
    } else if (m_options.originals == Originals::Trash) {
      for (const HideRow& row : m_rows)
        if (IsBelow(row.source, named.path)) removable.push_back(row.source);
    }
  }
  return removable;
}

std::string HideChoice::Shown(const Path& source) const {
  return m_input && source == m_input->Path() ? "standard input" : Printable(source.native());
}

}  // namespace tarnel
