#include "base/destruction.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "base/attempt.h"
#include "base/destruction_questions.h"
#include "base/pace.h"
#include "base/printable.h"
#include "base/trash.h"

namespace tarnel {

namespace {

constexpr std::size_t blockSize = 4096;
constexpr Length blocksPerSync =
    1024;  // so that the platform never holds back a write until the medium has caught up

class Destruction {
 public:
  Destruction(const Path& path, Dialogue& dialogue, Files& files)
      : m_path(path), m_dialogue(dialogue), m_files(files), m_pace(dialogue) {}

  bool Run();

 private:
  void Look();
  void Open();
  void Overwrite();
  void OverwriteBlock(Position at);
  void WriteThrough();
  void Close();
  void Kill();

  template <class Statement>
  void Try(Statement&& statement) {
    Attempt(m_dialogue, {OverwriteError}, std::forward<Statement>(statement));
  }

  const Path& m_path;
  Dialogue& m_dialogue;
  Files& m_files;
  Pace m_pace;
  bool m_isThere = true;
  FileStat m_found;
  std::unique_ptr<File> m_file;
};

bool Destruction::Run() {
  try {
    Look();
    if (!m_isThere) return true;
    if (m_found.kind != FileKind::SymbolicLink) {
      Open();
      if (m_file) Overwrite();
      WriteThrough();
      Close();
    }
    Kill();
    Look();
    return !m_isThere;
  } catch (const Stop&) {
    return false;
  }
}

void Destruction::Look() {
  Try([this] {
    const std::optional<FileStat> found = m_files.Stat(m_path, Files::Links::DontFollow);
    m_isThere = found.has_value();
    m_found = found.value_or(FileStat{});
  });
}

void Destruction::Open() {
  Try([this] {
    std::unique_ptr<File> file = m_files.OpenToChange(m_path);
    if (!file->Stat().IsSameFile(m_found))
      throw Error(ErrorNumber::PathFileAccess,
                  "cannot overwrite " + Printable(m_path.native()) + ": another file has taken its place",
                  m_path);
    m_file = std::move(file);
  });
}

void Destruction::Overwrite() {
  Length count = 0;
  Try([&] { count = m_file->Size() / static_cast<Length>(blockSize) + 1; });
  for (Length block = 0; block < count; ++block) {
    OverwriteBlock(Position{} + block * static_cast<Length>(blockSize));
    if (block % blocksPerSync == blocksPerSync - 1) WriteThrough();
    m_pace.Step();
  }
}

void Destruction::OverwriteBlock(Position at) {
  static const std::string letters(blockSize, 'X');
  static const std::string blanks(blockSize, ' ');
  Try([&] { m_file->WriteAt(at, AsBytes(letters)); });
  Try([&] { m_file->WriteAt(at, AsBytes(blanks)); });
}

void Destruction::WriteThrough() {
  const auto sync = [this] { m_file->Sync(); };
  if (m_file) Try([&] { RunYielding(m_dialogue, sync); });
}

void Destruction::Close() {
  if (m_file) Try([this] { m_file->Close(); });
}

void Destruction::Kill() {
  Try([this] { m_files.Remove(m_path); });
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
  return Destruction(path, dialogue, files).Run();
}

void RemovePath(const Path& path, Dialogue& dialogue, Files& files) {
  const Path plain = path.has_filename() ? path : path.parent_path();  // without a slash at its end
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

ShellDeleteResult ShellDelete(const std::vector<Path>& paths, Dialogue& dialogue, Files& files) {
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
      const Outcome outcome = Attempt(dialogue, {TrashError}, [&] { trash.Put(paths[i]); });
      if (outcome == Outcome::Done) result.outcomes[i] = TrashOutcome::Moved;
      pace.Step();
    }
  } catch (const Stop&) {
    result.isAborted = true;
  }
  return result;
}

}  // namespace tarnel
