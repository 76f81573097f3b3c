#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// The user's own trash: "Trash" in $XDG_DATA_HOME, else in ~/.local/share. Empty if there is no home.
Path HomeTrash();

/// The trash that the desktops share, in the form that freedesktop.org has laid down for it (Trash 1.0).
///
/// What lies on the file system of the home trash goes there. All else goes to the top folder of its own file
/// system: into .Trash/UID if an administrator has made .Trash (a real folder with the sticky bit), else into
/// .Trash-UID, and only if that is a folder of the user's own. Nothing is ever copied from one file system to
/// another.
class Trash {
 public:
  /// `home` as HomeTrash gives it. It is made when it is needed.
  Trash(Files& files, Path home);

  /// Moves a file, folder or symbolic link, a link without what it points to. Throws Error and has moved
  /// nothing then: FileNotFound if nothing is there, PathFileAccess if its file system has no trash that can
  /// be used.
  void Put(const Path& path);

 private:
  struct Place {
    Path folder;    // holds files/ and info/
    Path relative;  // what the info file calls the moved file
  };

  Place PlaceFor(const Path& path);
  std::optional<Path> TrashOnTop(const Path& top);
  bool IsOnDeviceOf(const Path& path, std::uint64_t device);
  bool IsOwnFolder(const Path& folder);
  void MakeFolders(const Path& folder);
  bool TryMove(const Path& path, const Place& place, const std::string& name);

  Files& m_files;
  Path m_home;
};

}  // namespace tarnel
