#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"

class QUrl;

namespace tarnel {

/// Opens files and folders with the applications of this desktop.
class DesktopOpener {
 public:
  /// Starts a program and goes on at once; false if it could not be started.
  using Starter = std::function<bool(const std::vector<std::string>& commandLine)>;

  explicit DesktopOpener(Files& files);
  DesktopOpener(Files& files, Starter starter);

  /// With the application that the desktop has for the type of its name; where there is none, one that the
  /// person chooses in "OpenWith", who may also cancel. Throws Error if nothing stands there, no application
  /// is installed, or it could not be started.
  void Open(const Path& path);

  /// A page of the documentation, with the browser and at the place that its fragment names, which the
  /// desktop's own opener would drop. False if it is no web page of this machine, or no browser could be
  /// started.
  bool OpenPage(const QUrl& page);

 private:
  void Start(const std::vector<std::string>& commandLine, const Path& path);

  Files& m_files;
  Starter m_starter;
};

}  // namespace tarnel
