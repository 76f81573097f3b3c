#include "tests/proof/power_loss.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

namespace tarnel::test {

namespace {

/// What a disk holds: names, and the contents that they lead to.
struct Disk {
  std::map<Path, int> names;
  std::map<int, std::string> contents;

  static Disk Of(const std::vector<Path>& files) {
    Disk disk;
    for (const Path& file : files) {
      const int number = static_cast<int>(disk.names.size());
      disk.names[file] = number;
      disk.contents[number] = ReadAll(file);
    }
    return disk;
  }
  std::string ContentOf(int file) const { return contents.contains(file) ? contents.at(file) : ""; }
  /// Makes it so; `all` are the files that are there at the moment.
  void Restore(const std::vector<Path>& all) const {
    for (const Path& file : all)
      std::filesystem::remove(file);
    for (const auto& [path, number] : names)
      WriteAll(path, ContentOf(number));
  }
  /// Names and contents in one string.
  std::string Image() const {
    std::string image;
    for (const auto& [path, number] : names)
      image += path.native() + '\0' + ContentOf(number) + '\0';
    return image;
  }
};

/// One call that changes the disk, or makes changes durable.
struct DiskStep {
  enum class Kind { Write, Truncate, Sync, Create, Remove, Rename, SyncFolder } kind;
  int file = 0;
  Length at = 0;           ///< Write: bytes before it; Truncate: the new length
  std::string bytes = {};  ///< Write
  Path path = {};          ///< Create, Remove, SyncFolder; Rename: the old name
  Path to = {};            ///< Rename
};

using Kind = DiskStep::Kind;

class RecordingFile : public File {
 public:
  RecordingFile(std::vector<DiskStep>& steps, std::unique_ptr<File> inner, int number)
      : m_steps(steps), m_inner(std::move(inner)), m_number(number) {}

  std::size_t ReadAt(Position from, MutableBytes into) override { return m_inner->ReadAt(from, into); }
  void WriteAt(Position to, Bytes bytes) override {
    m_inner->WriteAt(to, bytes);
    m_steps.push_back({.kind = Kind::Write,
                       .file = m_number,
                       .at = to - Position{},
                       .bytes = std::string(bytes.begin(), bytes.end())});
  }
  FileStat Stat() override { return m_inner->Stat(); }
  void Truncate(Length length) override {
    m_inner->Truncate(length);
    m_steps.push_back({.kind = Kind::Truncate, .file = m_number, .at = length});
  }
  void SetMode(mode_t mode) override { m_inner->SetMode(mode); }
  void Sync() override {
    m_inner->Sync();
    m_steps.push_back({.kind = Kind::Sync, .file = m_number});
  }
  void Lock() override { m_inner->Lock(); }
  void Close() override { m_inner->Close(); }

 private:
  std::vector<DiskStep>& m_steps;
  std::unique_ptr<File> m_inner;
  int m_number;
};

/// The platform's files; notes every step.
class RecordingFiles : public PosixFiles {
 public:
  explicit RecordingFiles(const Disk& start) : m_names(start.names) {}

  std::unique_ptr<File> OpenToRead(const Path& path) override {
    return Recorded(PosixFiles::OpenToRead(path), m_names.at(path));
  }
  std::unique_ptr<File> OpenToChange(const Path& path) override {
    return Recorded(PosixFiles::OpenToChange(path), m_names.at(path));
  }
  std::unique_ptr<File> CreateNew(const Path& path, mode_t mode) override {
    auto file = PosixFiles::CreateNew(path, mode);
    const int number = m_names[path] = 1000 + static_cast<int>(steps.size());
    steps.push_back({.kind = Kind::Create, .file = number, .path = path});
    return Recorded(std::move(file), number);
  }
  void Remove(const Path& path) override {
    PosixFiles::Remove(path);
    m_names.erase(path);
    steps.push_back({.kind = Kind::Remove, .path = path});
  }
  void Rename(const Path& from, const Path& to) override {
    PosixFiles::Rename(from, to);
    m_names[to] = m_names.at(from);
    m_names.erase(from);
    steps.push_back({.kind = Kind::Rename, .file = m_names.at(to), .path = from, .to = to});
  }
  void SyncFolder(const Path& folder) override {
    PosixFiles::SyncFolder(folder);
    steps.push_back({.kind = Kind::SyncFolder, .path = folder});
  }

  std::vector<DiskStep> steps;

 private:
  std::unique_ptr<File> Recorded(std::unique_ptr<File> file, int number) {
    return std::make_unique<RecordingFile>(steps, std::move(file), number);
  }

  std::map<Path, int> m_names;
};

/// What becomes of a change that nothing has made durable.
enum class Unsynced { Lost, Kept, Halved, Random };

bool ChangesContents(const DiskStep& step) {
  return step.kind == Kind::Write || step.kind == Kind::Truncate;
}

bool MakesDurable(const DiskStep& sync, const DiskStep& step) {
  if (ChangesContents(step)) return sync.kind == Kind::Sync && sync.file == step.file;
  return sync.kind == Kind::SyncFolder && sync.path == step.path.parent_path();
}

Unsynced Fate(Unsynced wanted, Dice& dice) {
  constexpr Unsynced fates[] = {Unsynced::Lost, Unsynced::Kept, Unsynced::Halved};
  return wanted == Unsynced::Random ? fates[dice.Roll(std::size(fates))] : wanted;
}

void ApplyWrite(std::string& content, const DiskStep& step, std::size_t length) {
  const auto at = static_cast<std::size_t>(step.at);
  content.resize(std::max(content.size(), at + length));
  content.replace(at, length, step.bytes, 0, length);
}

void Apply(const DiskStep& step, Disk& disk, Unsynced fate) {
  switch (step.kind) {
    case Kind::Write:
      return ApplyWrite(disk.contents[step.file], step,
                        step.bytes.size() / (fate == Unsynced::Halved ? 2 : 1));
    case Kind::Truncate:
      return disk.contents[step.file].resize(static_cast<std::size_t>(step.at));
    case Kind::Create:
      disk.names[step.path] = step.file;
      return;
    case Kind::Remove:
      disk.names.erase(step.path);
      return;
    case Kind::Rename:
      disk.names.erase(step.path);
      disk.names[step.to] = step.file;
      return;
    case Kind::Sync:
    case Kind::SyncFolder:
      return;
  }
}

/// The disk after a loss of power behind the first `done` steps. A write is durable once its file was synced
/// behind it, a name once its folder was. The others come true or not, each by itself; of a write that is
/// halved the front part does.
Disk AfterPowerLoss(const Disk& start, const std::vector<DiskStep>& steps, std::size_t done, Unsynced writes,
                    Unsynced names, Dice& dice) {
  Disk disk = start;
  const auto end = steps.begin() + static_cast<std::ptrdiff_t>(done);
  for (auto step = steps.begin(); step != end; ++step) {
    const bool isDurable =
        std::any_of(step, end, [&](const DiskStep& later) { return MakesDurable(later, *step); });
    const Unsynced fate = isDurable ? Unsynced::Kept : Fate(ChangesContents(*step) ? writes : names, dice);
    if (fate != Unsynced::Lost) Apply(*step, disk, fate);
  }
  return disk;
}

/// One command, recorded, with the disks that it could leave.
class PowerLosses {
 public:
  PowerLosses(Scene& scene, const Command& command, int randomDisks)
      : m_scene(scene), m_command(command), m_randomDisks(randomDisks) {}

  std::size_t Run() {
    Record();
    for (std::size_t done = 0; done <= m_steps.size(); ++done) {
      for (const Unsynced writes : {Unsynced::Lost, Unsynced::Kept, Unsynced::Halved})
        for (const Unsynced names : {Unsynced::Lost, Unsynced::Kept})
          Look(done, writes, names);
      for (int i = 0; i < m_randomDisks; ++i)
        Look(done, Unsynced::Random, Unsynced::Random);
    }
    return m_seen.size();
  }

 private:
  void Record() {
    m_scene.Reset(m_command);
    m_start = Disk::Of(m_scene.AllFiles());
    RecordingFiles files(m_start);
    m_scene.Run(m_command, [&](const std::vector<std::string>& words) { RunHere(words, files); });
    m_scene.JudgeFinished(m_command);
    m_steps = files.steps;
  }

  void Look(std::size_t done, Unsynced writes, Unsynced names) {
    const Disk disk = AfterPowerLoss(m_start, m_steps, done, writes, names, m_dice);
    if (!m_seen.insert(std::hash<std::string>()(disk.Image())).second) return;
    disk.Restore(m_scene.AllFiles());
    PosixFiles files;
    m_scene.Recover(m_command, [&](const std::vector<std::string>& words) { RunHere(words, files); });
    m_scene.Judge(m_command,
                  "power lost behind step " + std::to_string(done) + " of " + std::to_string(m_steps.size()));
  }

  Scene& m_scene;
  const Command& m_command;
  int m_randomDisks;
  Dice m_dice{1};
  Disk m_start;
  std::vector<DiskStep> m_steps;
  std::set<std::size_t> m_seen;
};

}  // namespace

std::size_t RunPowerLosses(unsigned seed, int randomDisks) {
  Scene scene(seed);
  std::size_t disks = 0;
  for (const Command& command : scene.Commands())
    disks += PowerLosses(scene, command, randomDisks).Run();
  return disks;
}

}  // namespace tarnel::test
