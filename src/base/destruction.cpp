#include "base/destruction.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/attempt.h"
#include "base/closing_separator.h"
#include "base/destruction_questions.h"
#include "base/pace.h"
#include "base/printable.h"
#include "base/trash.h"

namespace tarnel {

namespace {

constexpr std::size_t kBlockSize = 4096;
constexpr Length kBlocksPerSync =
    1024;  // so that the platform never holds back a write until the medium has caught up

Bytes Block(char fill) {
  static const std::string letters(kBlockSize, 'X');
  static const std::string blanks(kBlockSize, ' ');
  return AsBytes(fill == 'X' ? letters : blanks);
}

class Destruction {
 public:
  Destruction(const Path& path, const std::optional<FileStat>& seen, Dialogue& dialogue, Files& files)
      : m_path(path), m_seen(seen), m_dialogue(dialogue), m_files(files), m_pace(dialogue) {}

  Destroyed Run();

 private:
  void Look();
  void Open();
  void MustBeAsSeen();
  void Overwrite();
  void OverwriteBlock(Position at);
  void WriteThrough();
  void BlankAgain();
  void Close();
  void Kill();
  Error AnotherFile(std::string_view verb) const;

  static Position PlaceOf(Length block) { return Position{} + block * static_cast<Length>(kBlockSize); }

  template <class Statement>
  Outcome Try(Statement&& statement) {
    return Attempt(m_dialogue, {OverwriteError}, std::forward<Statement>(statement));
  }

  /// What stands there is not what is to go.
  struct HasChanged {};

  const Path& m_path;
  const std::optional<FileStat>& m_seen;
  Dialogue& m_dialogue;
  Files& m_files;
  Pace m_pace;
  bool m_isThere = true;
  FileStat m_found;
  std::unique_ptr<File> m_file;
  bool m_mayBeSpoilt = false;
  Length m_blanked = 0;   ///< blocks
  Length m_onMedium = 0;  ///< blocks of these that were written through
  bool m_mustBlankAgain = false;
};

Destroyed Destruction::Run() {
  try {
    Look();
    if (!m_isThere) return Destroyed::Gone;
    if (m_found.kind != FileKind::SymbolicLink) {
      Open();
      if (m_file) Overwrite();
      WriteThrough();
      Close();
    }
    Kill();
    Look();
    if (!m_isThere) return Destroyed::Gone;
  } catch (const Stop&) {  // what is left stays, as the person wished
  } catch (const HasChanged&) {
    return Destroyed::Changed;
  }
  return m_mayBeSpoilt ? Destroyed::Spoilt : Destroyed::Untouched;
}

void Destruction::Look() {
  Try([this] {
    const std::optional<FileStat> found = m_files.Stat(m_path, Files::Links::DontFollow);
    m_isThere = found.has_value();
    m_found = found.value_or(FileStat{});
  });
}

void Destruction::Open() {
  if (m_seen && !m_found.IsUntouchedSince(*m_seen)) throw HasChanged();
  Try([this] {
    std::unique_ptr<File> file = m_files.OpenToChange(m_path);
    if (!file->Stat().IsSameFile(m_found)) throw AnotherFile("overwrite");
    m_file = std::move(file);
  });
}

Error Destruction::AnotherFile(std::string_view verb) const {
  return {
      ErrorNumber::PathFileAccess,
      "cannot " + std::string(verb) + " " + Printable(m_path.native()) + ": another file has taken its place",
      m_path};
}

void Destruction::MustBeAsSeen() {
  if (!m_seen) return;
  bool isAsSeen = false;
  Try([&] { isAsSeen = m_file->Stat().IsUntouchedSince(*m_seen); });
  if (!isAsSeen) throw HasChanged();
}

void Destruction::Overwrite() {
  Length count = 0;
  Try([&] { count = m_file->Size() / static_cast<Length>(kBlockSize) + 1; });
  MustBeAsSeen();
  m_mayBeSpoilt = true;
  while (m_blanked < count) {
    OverwriteBlock(PlaceOf(m_blanked));
    ++m_blanked;
    if (m_blanked % kBlocksPerSync == 0 && !m_mustBlankAgain) WriteThrough();
    m_pace.Step();
  }
}

void Destruction::OverwriteBlock(Position at) {
  Try([&] { m_file->WriteAt(at, Block('X')); });
  Try([&] { m_file->WriteAt(at, Block(' ')); });
}

/// A system may take blocks for written that it failed to write, so they are written once more.
void Destruction::WriteThrough() {
  const auto sync = [this] { m_file->Sync(); };
  if (!m_file) return;
  Try([&] {
    if (m_mustBlankAgain) BlankAgain();
    m_mustBlankAgain = true;
    RunYielding(m_dialogue, sync);
    m_mustBlankAgain = false;
    m_onMedium = m_blanked;
  });
}

void Destruction::BlankAgain() {
  m_file->ForgetFailedSync();
  for (Length block = m_onMedium; block < m_blanked; ++block) {
    m_file->WriteAt(PlaceOf(block), Block(' '));
    m_pace.Step();
  }
}

void Destruction::Close() {
  if (m_file) Try([this] { m_file->Close(); });
}

/// An editor that saves meanwhile puts a new file in the place of the one that was overwritten.
void Destruction::Kill() {
  Try([this] {
    const std::optional<FileStat> named = m_files.Stat(m_path, Files::Links::DontFollow);
    const bool isUnwritten = m_seen && !m_mayBeSpoilt && m_found.kind != FileKind::SymbolicLink;
    if (named && isUnwritten && !named->IsUntouchedSince(*m_seen)) throw HasChanged();
    if (named && !named->IsSameFile(m_found)) throw AnotherFile("delete");
    m_files.Remove(m_path);
  });
}

void RemoveTree(Folder& parent, std::string_view name, Pace& pace) {
  const std::unique_ptr<Folder> folder = parent.Enter(name, Folder::IfMissing::Fail);
  const std::optional<FileStat> stat = parent.Stat(name);
  if (stat && (stat->mode & 0700) != 0700) folder->SetMode(stat->mode | 0700);
  for (const FolderEntry& entry : folder->List()) {
    if (entry.kind == FileKind::Folder)
      RemoveTree(*folder, entry.name, pace);
    else
      folder->Remove(entry.name);
    pace.Step();
  }
  parent.RemoveFolder(name);
}

}  // namespace

bool OverwriteAndKill(const Path& path, Dialogue& dialogue, Files& files) {
  return Destruction(path, std::nullopt, dialogue, files).Run() == Destroyed::Gone;
}

Destroyed OverwriteAndKillAsSeen(const Path& path, const FileStat& seen, Dialogue& dialogue, Files& files) {
  return Destruction(path, seen, dialogue, files).Run();
}

void RemovePath(const Path& path, Dialogue& dialogue, Files& files) {
  const Path plain = WithoutClosingSeparator(path);
  Pace pace(dialogue);
  const auto remove = [&] {
    const std::optional<FileStat> stat = files.Stat(plain, Files::Links::DontFollow);
    if (!stat) return;
    if (stat->kind == FileKind::Folder)
      RemoveTree(*files.OpenFolder(plain.parent_path()), plain.filename().native(), pace);
    else
      files.Remove(plain);
  };
  try {
    Attempt(dialogue, {RemoveError}, remove);
  } catch (const Stop&) {  // what is left stays, as the person wished
  }
}

bool ShellDeleteResult::Succeeded() const {
  return std::find(outcomes.begin(), outcomes.end(), TrashOutcome::Failed) == outcomes.end();
}

ShellDeleteResult ShellDelete(const std::vector<Path>& paths, Dialogue& dialogue, Files& files,
                              const TrashGuard& mayGo) {
  ShellDeleteResult result{std::vector<TrashOutcome>(paths.size(), TrashOutcome::NotTried)};
  if (paths.empty()) return result;
  if (dialogue.Ask(ConfirmTrash(paths)) != Answer::Yes) {
    result.isAborted = true;
    return result;
  }
  Trash trash(files, HomeTrash());
  Pace pace(dialogue);
  try {
    for (std::size_t i = 0; i < paths.size(); ++i) {
      result.outcomes[i] = TrashOutcome::Failed;
      TrashOutcome reached = TrashOutcome::Failed;
      const Outcome outcome = Attempt(dialogue, {TrashError}, [&] {
        const bool goes = !mayGo || mayGo(paths[i]);
        if (goes) trash.Put(paths[i]);
        reached = goes ? TrashOutcome::Moved : TrashOutcome::NotTried;
      });
      if (outcome == Outcome::Done) result.outcomes[i] = reached;
      pace.Step();
    }
  } catch (const Stop&) {
    result.isAborted = true;
  }
  return result;
}

}  // namespace tarnel
