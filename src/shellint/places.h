#pragma once

#include "shellint/drive_list.h"

namespace tarnel {

/// Where the tree has its roots.
class Places {
 public:
  virtual ~Places() = default;

  /// The desktop folder; empty if the user has no home.
  virtual Path Desktop() = 0;

  /// The folder for documents; empty if there is none that is not the desktop already.
  virtual Path Documents() = 0;

  /// Throws Error if the platform tells none.
  virtual DriveSurvey Drives() = 0;

  /// A descriptor with an exceptional condition (POLLPRI) once after each change of the drives; -1 if there
  /// is none.
  virtual int DrivesHandle() const = 0;
};

/// The user's folders as the desktops agree on them (xdg-user-dirs), and the drives of DriveList.
class MachinePlaces : public Places {
 public:
  explicit MachinePlaces(Files& files);
  MachinePlaces(const MachinePlaces&) = delete;
  MachinePlaces& operator=(const MachinePlaces&) = delete;
  ~MachinePlaces() override;

  /// The user's own, else "Desktop" or "Documents" in the home folder, else the home folder.
  Path Desktop() override;
  Path Documents() override;
  DriveSurvey Drives() override { return m_drives.Read(); }
  int DrivesHandle() const override { return m_mounts; }

 private:
  Path UserFolder(const std::string& key, const char* usual);

  Files& m_files;
  DriveList m_drives;
  int m_mounts;
};

}  // namespace tarnel
