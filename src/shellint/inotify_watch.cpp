#include "shellint/inotify_watch.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace tarnel {

namespace {

constexpr std::uint32_t kMask =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;

constexpr int kRenameGapMs = 2;  // the kernel puts both halves of a rename into the queue one after the other

std::optional<FolderChange::Kind> KindOf(std::uint32_t mask) {
  if ((mask & IN_Q_OVERFLOW) != 0) return FolderChange::Kind::Overflow;
  if ((mask & IN_IGNORED) != 0) return FolderChange::Kind::Gone;
  if ((mask & (IN_DELETE | IN_MOVED_FROM)) != 0) return FolderChange::Kind::Removed;
  if ((mask & (IN_CREATE | IN_MOVED_TO)) != 0) return FolderChange::Kind::Created;
  return std::nullopt;
}

}  // namespace

InotifyWatch::InotifyWatch() : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

InotifyWatch::~InotifyWatch() {
  if (m_descriptor >= 0) ::close(m_descriptor);
}

std::optional<WatchId> InotifyWatch::Watch(const Path& folder) {
  const int id = ::inotify_add_watch(m_descriptor, folder.c_str(), kMask);
  return id < 0 ? std::nullopt : std::optional(id);
}

void InotifyWatch::Unwatch(WatchId folder) {
  ::inotify_rm_watch(m_descriptor, folder);
}

std::vector<FolderChange> InotifyWatch::Take() {
  std::vector<FolderChange> changes;
  OpenRenames open;
  Read(changes, open);
  pollfd more{.fd = m_descriptor, .events = POLLIN, .revents = 0};
  if (!open.empty() && ::poll(&more, 1, kRenameGapMs) > 0) Read(changes, open);
  return changes;
}

void InotifyWatch::Read(std::vector<FolderChange>& changes, OpenRenames& open) {
  alignas(inotify_event) std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t length = ::read(m_descriptor, buffer.data(), buffer.size());
    if (length <= 0) return;
    for (const char* at = buffer.data(); at < buffer.data() + length;) {
      inotify_event event{};
      std::memcpy(&event, at, sizeof event);
      at += sizeof event;
      Note(event, event.len > 0 ? at : "", changes, open);
      at += event.len;
    }
  }
}

void InotifyWatch::Note(const inotify_event& event, const char* name, std::vector<FolderChange>& changes,
                        OpenRenames& open) {
  const std::optional<FolderChange::Kind> kind = KindOf(event.mask);
  if (!kind) return;
  const auto renamed = (event.mask & IN_MOVED_TO) != 0 ? open.find(event.cookie) : open.end();
  if (renamed != open.end()) {
    FolderChange& change = changes[renamed->second];
    change.kind = FolderChange::Kind::Renamed;
    change.newFolder = event.wd;
    change.newName = name;
    open.erase(renamed);
    return;
  }
  if ((event.mask & IN_MOVED_FROM) != 0) open[event.cookie] = changes.size();
  const bool isFolder = (event.mask & IN_ISDIR) != 0;
  changes.push_back({.kind = *kind, .folder = event.wd, .isFolder = isFolder, .name = name, .newName = {}});
}

}  // namespace tarnel
