#pragma once

#include <cstdint>
#include <map>

#include "shellint/folder_watch.h"

struct inotify_event;

namespace tarnel {

/// Folders watched by the kernel's inotify, which counts against a limit that the user's programs share.
class InotifyWatch : public FolderWatch {
 public:
  InotifyWatch();
  InotifyWatch(const InotifyWatch&) = delete;
  InotifyWatch& operator=(const InotifyWatch&) = delete;
  ~InotifyWatch() override;

  std::optional<WatchId> Watch(const Path& folder) override;
  void Unwatch(WatchId folder) override;
  std::vector<FolderChange> Take() override;
  int Handle() const override { return m_descriptor; }

 private:
  using OpenRenames = std::map<std::uint32_t, std::size_t>;  // cookie -> the change that waits for a new name

  void Read(std::vector<FolderChange>& changes, OpenRenames& open);
  static void Note(const inotify_event& event, const char* name, std::vector<FolderChange>& changes,
                   OpenRenames& open);

  int m_descriptor;
};

}  // namespace tarnel
