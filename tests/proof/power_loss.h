#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/proof/scene.h"

namespace tarnel::test {

/// What a disk holds: names, and the contents that they lead to.
struct Disk {
  std::map<Path, int> names;
  std::map<int, std::string> contents;

  static Disk Of(const std::vector<Path>& files);
  /// Makes it so; `all` are the files that are there at the moment.
  void Restore(const std::vector<Path>& all) const;
  /// Names and contents in one string.
  std::string Image() const;
};

/// One call that changes the disk, or makes changes durable.
struct DiskStep {
  enum class Kind { Write, Truncate, Sync, Create, Remove, Rename, SyncFolder } kind;
  int file = 0;
  Length at = 0;      ///< Write: bytes before it; Truncate: the new length
  std::string bytes;  ///< Write
  Path path;          ///< Create, Remove, SyncFolder; Rename: the old name
  Path to;            ///< Rename
};

/// The platform's files; notes every step.
class RecordingFiles : public PosixFiles {
 public:
  explicit RecordingFiles(const Disk& start) : m_names(start.names) {}

  const std::vector<DiskStep>& Steps() const { return m_steps; }
  void Note(DiskStep step) { m_steps.push_back(std::move(step)); }

  std::unique_ptr<File> OpenToRead(const Path& path) override;
  std::unique_ptr<File> OpenToChange(const Path& path) override;
  std::unique_ptr<File> CreateNew(const Path& path, mode_t mode) override;
  void Remove(const Path& path) override;
  void Rename(const Path& from, const Path& to) override;
  void SyncFolder(const Path& folder) override;

 private:
  std::map<Path, int> m_names;
  std::vector<DiskStep> m_steps;
};

/// What becomes of a change that nothing has made durable.
enum class Unsynced { Lost, Kept, Halved, Random };

/// The disk after a loss of power behind the first `done` steps. A write is durable once its file was synced
/// behind it, a name once its folder was. The others come true or not, each by itself; of a write that is
/// halved the front part does.
Disk AfterPowerLoss(const Disk& start, const std::vector<DiskStep>& steps, std::size_t done, Unsynced writes,
                    Unsynced names, Dice& dice);

/// Runs each command of a scene and, for each of its steps, looks at disks that a loss of power behind it
/// could leave: the extremes and `randomDisks` more. Recovers on each and throws std::runtime_error if
/// anything is lost. Gives the number of different disks.
std::size_t RunPowerLosses(unsigned seed, int randomDisks);

}  // namespace tarnel::test
