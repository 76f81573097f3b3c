#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// An application as its .desktop file describes it (Desktop Entry 1.5 of freedesktop.org).
struct DesktopApplication {
  std::string id;    ///< file name below applications/, with "-" for "/"
  std::string name;  ///< for people
  std::string exec;  ///< the command line with its field codes
  std::vector<std::string> types;
};

/// Where the desktops keep what they agree on (XDG Base Directory of freedesktop.org), the user's own first.
struct DesktopFolders {
  std::vector<Path> config;
  std::vector<Path> data;
};
DesktopFolders UserDesktopFolders();

/// The applications of this desktop, and which of them opens what (Association between MIME types and
/// applications 1.0). Reads the disk at each call; what can't be read is passed over.
class DesktopApplications {
 public:
  DesktopApplications(Files& files, DesktopFolders folders);

  /// All that take files and need no terminal, by name.
  std::vector<DesktopApplication> All();

  /// For the first of `types` that has one: the default, else an added one, else one that names the type
  /// itself.
  std::optional<DesktopApplication> DefaultFor(const std::vector<std::string>& types);

 private:
  void AddFrom(const Path& folder, const std::string& prefix, int depth,
               std::vector<DesktopApplication>& found);
  std::optional<DesktopApplication> Assigned(const std::string& type, std::string_view group,
                                             const std::vector<DesktopApplication>& all);
  std::string Text(const Path& file);

  Files& m_files;
  DesktopFolders m_folders;
  std::set<std::string> m_seen;  ///< ids met so far, of hidden ones too
};

/// Program and arguments that open `file`. Empty where the command line is none. An application that takes
/// URLs gets `url` instead, if there is one.
std::vector<std::string> CommandLineFor(const DesktopApplication& application, const Path& file,
                                        const std::string& url = {});

}  // namespace tarnel
