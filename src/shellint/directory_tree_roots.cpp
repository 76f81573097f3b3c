#include <algorithm>

#include "shellint/directory_tree.h"

namespace tarnel {

namespace {

NodeImage ImageOf(DriveKind kind) {
  switch (kind) {
    case DriveKind::Removable:
      return NodeImage::Removable;
    case DriveKind::Fixed:
      return NodeImage::Fixed;
    case DriveKind::Remote:
      return NodeImage::Remote;
    case DriveKind::CdRom:
      return NodeImage::CdRom;
    case DriveKind::RamDisk:
      return NodeImage::RamDisk;
    case DriveKind::Unknown:
      break;
  }
  return NodeImage::Unknown;
}

std::string CaptionOf(const Drive& drive) {
  const bool isNamelessRoot = drive.label.empty() && drive.root == "/";
  return (isNamelessRoot ? "File System" : drive.label) + " (" + drive.root.native() + ")";
}

bool Holds(const std::vector<Drive>& drives, const Drive& drive) {
  return std::find(drives.begin(), drives.end(), drive) != drives.end();
}

std::string FolderOrNothing(const Path& path) {
  return path.empty() ? std::string() : WithSeparator(path.lexically_normal().native());
}

}  // namespace

bool DirectoryTree::ShowRoots() {
  m_desktop = FolderOrNothing(m_places.Desktop());
  m_documents = FolderOrNothing(m_places.Documents());
  AddPlace(m_desktop, NodeImage::Desktop, "Desktop");
  AddPlace(m_documents, NodeImage::MyDocuments, "My Documents");
  DirectoryNode computer;
  computer.kind = NodeKind::Virtual;
  computer.image = NodeImage::MyComputer;
  computer.name = "MyComputer";
  computer.caption = "My Computer";
  computer.listing = DirectoryNode::Listing::Listed;
  m_computer = &m_nodes.AddRoot(m_nodes.Top(), m_nodes.Top().children.size(), std::move(computer));
  bool hasDrives = true;
  try {
    ApplyDrives(m_places.Drives());
  } catch (const Error&) {
    hasDrives = false;
    ApplyDrives({.drives = {{.root = "/", .kind = DriveKind::Fixed, .label = {}}},
                 .mountPoints = {},
                 .waitingRoots = {}});
  }
  m_events.ShowExpanded(*m_computer);
  return hasDrives;
}

void DirectoryTree::AddPlace(const std::string& path, NodeImage image, const char* caption) {
  if (path.empty()) return;
  DirectoryNode place;
  place.image = image;
  place.name = path;
  place.caption = caption;
  ListQuietly(m_nodes.AddRoot(m_nodes.Top(), m_nodes.Top().children.size(), std::move(place)));
}

void DirectoryTree::AddDrive(std::size_t row, const Drive& drive) {
  DirectoryNode node;
  node.kind = NodeKind::Drive;
  node.image = ImageOf(drive.kind);
  node.name = WithSeparator(drive.root.native());
  node.caption = CaptionOf(drive);
  DirectoryNode& added = m_nodes.AddRoot(*m_computer, row, std::move(node));
  if (!added.IsReadOnlyWhenOpened()) ListQuietly(added);
}

/// The paths of those that went. Drives that are wanted in another order go too, and come back in theirs.
std::vector<std::string> DirectoryTree::RemoveDrivesNotIn(const std::vector<Drive>& wanted) {
  std::vector<Drive> common;
  std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(common),
               [&](const Drive& drive) { return Holds(m_drives, drive); });
  std::vector<Drive> left = m_drives;
  std::erase_if(left, [&](const Drive& drive) { return !Holds(wanted, drive); });
  if (common != left) common.clear();
  std::vector<std::string> gone;
  for (std::size_t row = m_drives.size(); row-- > 0;) {
    if (Holds(common, m_drives[row])) continue;
    gone.push_back(m_computer->children[row]->name);
    m_nodes.Remove(*m_computer->children[row]);
  }
  m_drives = common;
  return gone;
}

/// The paths of the drives that went.
std::vector<std::string> DirectoryTree::ApplyDrives(const DriveSurvey& survey) {
  m_mountPoints = survey.mountPoints;
  m_waitingRoots.clear();
  for (const tarnel::Path& root : survey.waitingRoots)
    m_waitingRoots.push_back(WithSeparator(root.native()));
  std::sort(m_waitingRoots.begin(), m_waitingRoots.end());
  std::vector<Drive> wanted = survey.drives;
  if (LeaveOutDiscs) std::erase_if(wanted, [](const Drive& drive) { return drive.kind == DriveKind::CdRom; });
  std::vector<std::string> gone = RemoveDrivesNotIn(wanted);
  for (std::size_t row = 0; row < wanted.size(); ++row)
    if (row >= m_drives.size() || m_drives[row] != wanted[row]) {
      m_drives.insert(m_drives.begin() + static_cast<std::ptrdiff_t>(row), wanted[row]);
      AddDrive(row, wanted[row]);
    }
  return gone;
}

void DirectoryTree::RefreshDrives() {
  if (!m_isInitialized) return;
  const std::vector<Drive> before = m_drives;
  const std::vector<tarnel::Path> mountPoints = m_mountPoints;
  std::vector<std::string> gone;
  try {
    gone = ApplyDrives(m_places.Drives());
  } catch (const Error&) {  // what was known stays
    return;
  }
  RereadMountPoints(mountPoints);
  LoadAhead(*m_computer);
  SettleSelection();
  const std::vector<Drive> after = m_drives;
  for (const std::string& path : gone)
    m_events.OnDirRemove(path);
  for (const Drive& drive : after)
    if (!Holds(before, drive)) m_events.OnDirCreate(WithSeparator(drive.root.native()));
}

/// Folders over which something was mounted, or no longer is, hold something else now.
void DirectoryTree::RereadMountPoints(const std::vector<tarnel::Path>& before) {
  std::vector<tarnel::Path> old = before, now = m_mountPoints, changed;
  std::sort(old.begin(), old.end());
  std::sort(now.begin(), now.end());
  std::set_symmetric_difference(old.begin(), old.end(), now.begin(), now.end(), std::back_inserter(changed));
  for (const tarnel::Path& path : changed) {
    for (DirectoryNode* node : m_nodes.At(path.native())) {
      if (node->isRoot || node->listing == DirectoryNode::Listing::NotYet) continue;
      Unwatch(*node);
      if (WaitsWhenRead(*node)) {
        node->listing = DirectoryNode::Listing::NotYet;
        m_nodes.RemoveChildren(*node);
      } else {
        ListQuietly(*node);
      }
    }
  }
}

}  // namespace tarnel
