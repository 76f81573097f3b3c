#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "base/error.h"

namespace tarnel {

using Path = std::filesystem::path;
using Length = std::int64_t;

/// A place in a file, counted from 1.
struct Position {
  std::int64_t value = 1;

  friend constexpr Position operator+(Position p, Length n) { return {p.value + n}; }
  friend constexpr Position operator-(Position p, Length n) { return {p.value - n}; }
  friend constexpr Length operator-(Position a, Position b) { return a.value - b.value; }
  friend constexpr auto operator<=>(Position, Position) = default;
};

enum class FileKind { Regular, Folder, SymbolicLink, Other };

struct FileStat {
  FileKind kind = FileKind::Regular;
  Length size = 0;
  mode_t mode = 0;  ///< permission bits only, up to 07777
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::time_t modified = 0;
  std::time_t accessed = 0;
  std::time_t created = 0;  ///< `modified` where the file system keeps no time of birth
  uid_t owner = 0;
  gid_t group = 0;
  std::int64_t modifiedNanoseconds = 0;  ///< since 1970, as fine as the file system keeps it
  std::int64_t changedNanoseconds = 0;   ///< of contents, names, owner or mode; no program can set it back

  bool IsSameFile(const FileStat& other) const { return device == other.device && inode == other.inode; }
  /// The same file, and nothing has been done to it that its file system keeps a time of.
  bool IsUntouchedSince(const FileStat& before) const;
};

/// An open file. Positioned reads and writes only, so that a failed statement can be run again.
/// All calls throw Error with the path. The destructor closes in silence; whoever wrote calls Close.
class File {
 public:
  virtual ~File() = default;

  /// Fills `into` with the bytes from `from` on; fewer only where the file ends. Below position 1:
  /// BadRecordNumber.
  virtual std::size_t ReadAt(Position from, MutableBytes into) = 0;

  /// Writes all bytes, growing the file where needed. After a throw a front part may have been written.
  virtual void WriteAt(Position to, Bytes bytes) = 0;

  /// Puts the `length` bytes that stand in `source` from `from` on to position `to`, and returns how many:
  /// fewer only where the source ends. Errors and what they leave are those of ReadAt and WriteAt. The
  /// platform moves the bytes by itself where it can, which halves the time.
  virtual Length CopyAt(Position to, File& source, Position from, Length length);

  virtual FileStat Stat() = 0;
  Length Size() { return Stat().size; }

  /// Cuts the file to `length` bytes. Needs no space.
  virtual void Truncate(Length length) = 0;

  /// Sets the permission bits of the open file, whatever has become of its name.
  virtual void SetMode(mode_t mode) = 0;

  /// Sets the time of last change, in seconds since 1970. Files that keep no times do nothing.
  virtual void SetModified(std::int64_t) {}

  /// Gives the file away. Files that have no owner do nothing.
  virtual void SetOwner(uid_t, gid_t) {}

  /// The access list as the platform keeps it, empty if there is none beside the permission bits. Where there
  /// is one, the group's permission bits are the most that it gives to anybody but owner and others.
  virtual std::string AccessList() { return {}; }
  /// Sets a list that AccessList gave; an empty one takes the list away.
  virtual void SetAccessList(const std::string&) {}

  /// Says that Sync will come. The platform then begins to put bytes on the medium while more are written, so
  /// that Sync waits less; without it, it begins when it sees fit. Promises nothing, and can't fail.
  virtual void ExpectSync() {}

  /// Returns when the bytes are on the medium. Once it has failed it fails again, for nobody knows which
  /// bytes got there.
  virtual void Sync() = 0;

  /// Says that all bytes since the last Sync that succeeded will be written again. The next Sync then counts.
  virtual void ForgetFailedSync() {}

  /// Takes the advisory lock for this open file (flock). PermissionDenied if another process has it. Gone at
  /// close. Does nothing where files can't be locked, and where the file system locks none that is open for
  /// reading only, as NFS does. On SMB the lock is no advice: no other open file can read or write then, not
  /// even one of this process.
  virtual void Lock() = 0;

  /// Closes and reports what the platform still had to say. The file is closed whether it throws or not, and
  /// closing it once more does nothing, so that the statement can be run again.
  virtual void Close() = 0;
};

struct FolderEntry {
  std::string name;                 ///< bytes as the platform has them; never "." or ".."
  FileKind kind = FileKind::Other;  ///< of the entry itself: a symbolic link is one
};

/// An open folder through which nothing outside it can be reached: names are single components, symbolic
/// links are never followed. A name that is empty, ".", "..", or holds "/" or a zero byte is a BadFileName
/// that quotes it.
class Folder {
 public:
  virtual ~Folder() = default;

  /// Where it was opened, for messages.
  virtual const Path& Where() const = 0;

  enum class IfMissing { Fail, Create };
  /// The subfolder `name`. A symbolic link or another kind of file in its place is a BadFileName.
  virtual std::unique_ptr<Folder> Enter(std::string_view name, IfMissing ifMissing) = 0;

  /// What `name` is, without following it; nothing if it isn't there.
  virtual std::optional<FileStat> Stat(std::string_view name) = 0;

  /// Makes a new file with exactly this mode, open for reading and writing. FileExists if the name is taken.
  virtual std::unique_ptr<File> CreateNew(std::string_view name, mode_t mode) = 0;

  /// Replaces `to`, if it is there, in one step.
  virtual void Rename(std::string_view from, std::string_view to) = 0;

  /// Removes a file or symbolic link.
  virtual void Remove(std::string_view name) = 0;

  /// Removes an empty subfolder.
  virtual void RemoveFolder(std::string_view name) = 0;

  /// The entries, sorted by name bytes.
  virtual std::vector<FolderEntry> List() = 0;

  /// Sets the permission bits of the open folder itself, which need allow nothing for that.
  virtual void SetMode(mode_t mode) = 0;

  /// Takes the advisory lock for this open folder, as File::Lock does: it says that somebody works with what
  /// is in it. Gone when the object dies.
  virtual void Lock() = 0;
};

/// The port to the platform's files. Everything that touches a disk goes through it, so that tests can let
/// any operation fail. Paths are bytes. All calls throw Error with the path.
class Files {
 public:
  virtual ~Files() = default;

  enum class Links { Follow, DontFollow };
  /// Nothing if there is no such file (or no folder on the way to it).
  virtual std::optional<FileStat> Stat(const Path& path, Links links = Links::Follow) = 0;

  /// The absolute path of what `path` leads to, without symbolic links, "." and "..", so that one file or
  /// folder has one such path however it is spelled. FileNotFound if it isn't there.
  virtual Path Canonical(const Path& path) = 0;

  /// Regular files only: a folder, pipe, socket or device is a PathFileAccess that says what it is. Never
  /// blocks.
  virtual std::unique_ptr<File> OpenToRead(const Path& path) = 0;
  virtual std::unique_ptr<File> OpenToChange(const Path& path) = 0;  ///< for reading and writing; must exist

  /// Makes a new file with exactly this mode, open for reading and writing. FileExists if the name is taken,
  /// also by a symbolic link.
  virtual std::unique_ptr<File> CreateNew(const Path& path, mode_t mode) = 0;

  virtual void Remove(const Path& path) = 0;        ///< a file or symbolic link; FileNotFound if missing
  virtual void RemoveFolder(const Path& path) = 0;  ///< an empty folder
  virtual void CreateFolder(const Path& path, mode_t mode) = 0;
  virtual void Rename(const Path& from, const Path& to) = 0;  ///< replaces `to` in one step

  /// Gives `from` the name `to` only if nothing has it, not even a dangling link: FileExists otherwise, and
  /// nothing has changed. Also where the file system can't do both in one step, nothing is ever replaced. A
  /// name that differs in nothing but what the file system makes no difference of (upper and lower case on
  /// some) is free.
  virtual void RenameNoReplace(const Path& from, const Path& to) = 0;
  virtual void SetMode(const Path& path, mode_t mode) = 0;

  /// Makes the names in a folder durable. Platforms that can't do this are passed over in silence.
  virtual void SyncFolder(const Path& folder) = 0;

  /// Returns when all bytes and names of the file system that holds `folder` are on the medium. Platforms
  /// that can't do this are passed over in silence.
  virtual void SyncFileSystem(const Path& folder) = 0;

  /// The folder's entries, sorted by name bytes.
  virtual std::vector<FolderEntry> List(const Path& folder) = 0;

  /// Bytes that an ordinary user can still write on the file system that holds `path`.
  virtual std::int64_t FreeSpace(const Path& path) = 0;

  virtual std::unique_ptr<Folder> OpenFolder(const Path& path) = 0;
};

/// The platform itself. Survives interrupted calls and short writes.
class PosixFiles : public Files {
 public:
  std::optional<FileStat> Stat(const Path& path, Links links = Links::Follow) override;
  Path Canonical(const Path& path) override;
  std::unique_ptr<File> OpenToRead(const Path& path) override;
  std::unique_ptr<File> OpenToChange(const Path& path) override;
  std::unique_ptr<File> CreateNew(const Path& path, mode_t mode) override;
  void Remove(const Path& path) override;
  void RemoveFolder(const Path& path) override;
  void CreateFolder(const Path& path, mode_t mode) override;
  void Rename(const Path& from, const Path& to) override;
  void RenameNoReplace(const Path& from, const Path& to) override;
  void SetMode(const Path& path, mode_t mode) override;
  void SyncFolder(const Path& folder) override;
  void SyncFileSystem(const Path& folder) override;
  std::vector<FolderEntry> List(const Path& folder) override;
  std::int64_t FreeSpace(const Path& path) override;
  std::unique_ptr<Folder> OpenFolder(const Path& path) override;
};

}  // namespace tarnel
