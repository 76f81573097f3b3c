#include "shellint/drive_list.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <sstream>
#include <utility>

namespace tarnel {

namespace {

struct Mount {
  std::string number;  // "major:minor"
  std::string subtree;
  std::string point;
  std::string type;
  std::string source;
};

bool IsIn(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// proc(5): blank, tab, line feed and backslash are written as three octal digits.
std::string Unescaped(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto isOctal = [&](std::size_t at) {
      return at < text.size() && text[at] >= '0' && text[at] <= '7';
    };
    if (text[i] == '\\' && isOctal(i + 1) && isOctal(i + 2) && isOctal(i + 3)) {
      const int code = (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0');
      bytes.push_back(static_cast<char>(code));
      i += 3;
    } else {
      bytes.push_back(text[i]);
    }
  }
  return bytes;
}

/// udev writes what is no plain character as "\x" and two digits.
std::string LabelOfLink(std::string_view name) {
  std::string label;
  for (std::size_t i = 0; i < name.size(); ++i) {
    unsigned code = 0;
    const bool isEscape = name.substr(i, 2) == "\\x" && i + 3 < name.size();
    if (isEscape && std::istringstream(std::string(name.substr(i + 2, 2))) >> std::hex >> code) {
      label.push_back(static_cast<char>(code));
      i += 3;
    } else {
      label.push_back(name[i]);
    }
  }
  return label;
}

std::string ReadWhole(Files& files, const Path& path) {
  const std::unique_ptr<File> file = files.OpenToRead(path);
  std::string text;
  std::array<char, 65536> block;
  for (;;) {
    const MutableBytes room(reinterpret_cast<std::uint8_t*>(block.data()), block.size());
    const std::size_t count = file->ReadAt(Position{} + static_cast<Length>(text.size()), room);
    if (count == 0) return text;
    text.append(block.data(), count);
  }
}

std::vector<Mount> MountsIn(const std::string& text) {
  std::vector<Mount> mounts;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string id, parent, options, field;
    Mount mount;
    fields >> id >> parent >> mount.number >> mount.subtree >> mount.point >> options;
    while (fields >> field && field != "-") {
    }
    if (!(fields >> mount.type >> mount.source)) continue;
    mount.point = Unescaped(mount.point);
    mount.source = Unescaped(mount.source);
    mounts.push_back(std::move(mount));
  }
  return mounts;
}

bool IsNetwork(const std::string& type) {
  static const std::set<std::string_view> types = {"9p",    "afs",  "ceph", "cifs",  "coda",
                                                   "davfs", "gfs",  "gfs2", "ncp",   "nfs",
                                                   "ncpfs", "nfs4", "smb3", "smbfs", "lustre"};
  static const std::set<std::string_view> local = {
      "fuse.ntfs-3g",   "fuse.exfat",    "fuse.ext2",  "fuse.encfs",  "fuse.gocryptfs", "fuse.cryfs",
      "fuse.veracrypt", "fuse.mergerfs", "fuse.lxcfs", "fuse.portal", "fuse.gvfsd-fuse"};
  return types.contains(type) || (type.starts_with("fuse.") && !local.contains(type));
}

bool IsOnDevice(const Mount& mount) {
  return mount.source.starts_with("/dev/") || !mount.number.starts_with("0:") || mount.type == "zfs";
}

/// Where systems keep themselves; nobody looks for files of their own there.
bool IsSystemFolder(std::string_view point) {
  static constexpr std::array exact = {"/tmp", "/usr", "/usr/local", "/var", "/etc",
                                       "/nix", "/opt", "/root",      "/srv"};
  static constexpr std::array whole = {"/proc",    "/sys",      "/dev",     "/boot",    "/efi",      "/snap",
                                       "/var/lib", "/var/snap", "/var/log", "/var/tmp", "/var/cache"};
  if (IsIn(point, "/run")) return !IsIn(point, "/run/media");
  return std::find(exact.begin(), exact.end(), point) != exact.end() ||
         std::any_of(whole.begin(), whole.end(), [&](const char* folder) { return IsIn(point, folder); });
}

class Survey {
 public:
  Survey(Files& files, const DriveList::Sources& sources) : m_files(files), m_sources(sources) {}

  DriveSurvey Run() {
    Take(MountsIn(ReadWhole(m_files, m_sources.mountInfo)));
    return std::move(m_survey);
  }

 private:
  void Take(const std::vector<Mount>& mounts) {
    std::map<std::string, std::size_t> topmost;  // what is mounted over another one hides it
    for (std::size_t i = 0; i < mounts.size(); ++i)
      topmost[mounts[i].point] = i;
    ReadLabels();
    const auto root = topmost.find("/");
    Add({.root = "/",
         .kind = root == topmost.end() ? DriveKind::Fixed : KindOf(mounts[root->second]),
         .label = {}},
        root == topmost.end() ? nullptr : &mounts[root->second]);
    for (std::size_t i = 0; i < mounts.size(); ++i) {
      const Mount& mount = mounts[i];
      if (topmost[mount.point] != i) continue;
      const DriveKind kind = KindOf(mount);
      m_survey.mountPoints.emplace_back(mount.point);
      if (mount.type == "autofs" || IsWaiting(kind)) m_survey.waitingRoots.emplace_back(mount.point);
      if (mount.point != "/" && IsForPeople(mount, kind))
        Add({.root = mount.point, .kind = kind, .label = {}}, &mount);
    }
  }

  static bool IsWaiting(DriveKind kind) {
    return kind == DriveKind::Removable || kind == DriveKind::CdRom || kind == DriveKind::Remote;
  }

  static bool IsForPeople(const Mount& mount, DriveKind kind) {
    if (IsSystemFolder(mount.point)) return false;
    return kind == DriveKind::Remote || kind == DriveKind::RamDisk || IsOnDevice(mount);
  }

  void Add(Drive drive, const Mount* mount) {
    const bool isRoot = drive.root == "/";
    // Further mounts of a volume that is there already show parts of it in other places.
    if (mount != nullptr && !m_volumes.insert(mount->number).second && !isRoot) return;
    if (mount != nullptr) drive.label = LabelOf(*mount, drive.kind);
    m_survey.drives.push_back(std::move(drive));
  }

  DriveKind KindOf(const Mount& mount) {
    if (IsNetwork(mount.type)) return DriveKind::Remote;
    if (mount.type == "tmpfs" || mount.type == "ramfs") return DriveKind::RamDisk;
    if (mount.type == "iso9660" && !mount.source.starts_with("/dev/loop")) return DriveKind::CdRom;
    if (!IsOnDevice(mount)) return mount.point == "/" ? DriveKind::Fixed : DriveKind::Unknown;
    return KindOfDevice(DeviceOf(mount));
  }

  /// The folder of the device below /sys/devices; empty if the kernel shows none.
  Path DeviceOf(const Mount& mount) const {
    const Path byNumber = Behind(m_sources.deviceNumbers / mount.number);
    if (!byNumber.empty()) return byNumber;
    const Path node = Behind(mount.source);
    const std::string name = (node.empty() ? Path(mount.source) : node).filename();
    return name.empty() ? Path() : Behind(m_sources.deviceNames / name);
  }

  /// What a link leads to; empty if it leads nowhere.
  Path Behind(const Path& link) const {
    try {
      return m_files.Canonical(link);
    } catch (const Error&) {
      return {};
    }
  }

  DriveKind KindOfDevice(Path device) {
    constexpr int mostLayers = 8;  // a volume on an encrypted volume on a set of disks on ...
    for (int layer = 0; layer < mostLayers && !device.empty(); ++layer) {
      const std::string name = device.native() + "/";
      const std::string disk = device.filename().native();
      if (disk.starts_with("sr")) return DriveKind::CdRom;
      if (disk.starts_with("ram") || disk.starts_with("zram")) return DriveKind::RamDisk;
      const Path whole = Exists(device / "partition") ? device.parent_path() : device;
      const bool isCard = disk.starts_with("mmcblk") && FirstLine(whole / "device/type") == "SD";
      if (isCard || name.find("/usb") != std::string::npos || FirstLine(whole / "removable") == "1")
        return DriveKind::Removable;
      device = FirstSlave(device);
    }
    return DriveKind::Fixed;
  }

  bool Exists(const Path& path) {
    try {
      return m_files.Stat(path).has_value();
    } catch (const Error&) {
      return false;
    }
  }

  std::string FirstLine(const Path& path) {
    try {
      const std::string text = ReadWhole(m_files, path);
      return text.substr(0, text.find('\n'));
    } catch (const Error&) {
      return {};
    }
  }

  Path FirstSlave(const Path& device) {
    try {
      const std::vector<FolderEntry> slaves = m_files.List(device / "slaves");
      return slaves.empty() ? Path() : Behind(device / "slaves" / slaves[0].name);
    } catch (const Error&) {
      return {};
    }
  }

  void ReadLabels() {
    try {
      for (const FolderEntry& link : m_files.List(m_sources.labels)) {
        const Path node = Behind(m_sources.labels / link.name);
        if (!node.empty()) m_labels[node.filename()] = LabelOfLink(link.name);
      }
    } catch (const Error&) {  // without udev no volume shows its label
    }
  }

  std::string LabelOf(const Mount& mount, DriveKind kind) const {
    if (kind == DriveKind::Remote || mount.type == "zfs") return mount.source;
    const auto byDevice = m_labels.find(DeviceOf(mount).filename());
    return byDevice == m_labels.end() ? std::string() : byDevice->second;
  }

  Files& m_files;
  const DriveList::Sources& m_sources;
  DriveSurvey m_survey;
  std::map<Path, std::string> m_labels;  // by the name of the device
  std::set<std::string> m_volumes;
};

}  // namespace

DriveList::DriveList(Files& files, Sources sources) : m_files(files), m_sources(std::move(sources)) {}

DriveSurvey DriveList::Read() {
  return Survey(m_files, m_sources).Run();
}

}  // namespace tarnel
