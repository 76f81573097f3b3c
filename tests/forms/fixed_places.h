#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include "shellint/folder_watch.h"
#include "shellint/places.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// A machine that is a temporary folder with a "Desktop" in it.
class FixedPlaces : public Places {
 public:
  explicit FixedPlaces(const TempFolder& temp) : m_temp(temp) {}
  Path Desktop() override { return m_temp / "Desktop"; }
  Path Documents() override { return {}; }
  DriveSurvey Drives() override {
    return {.drives = {{.root = m_temp.Where(), .kind = DriveKind::Fixed, .label = {}}},
            .mountPoints = {},
            .waitingRoots = {}};
  }
  int DrivesHandle() const override { return -1; }

 private:
  const TempFolder& m_temp;
};

/// Sees nothing.
class NoWatch : public FolderWatch {
 public:
  ~NoWatch() override { close(m_handle); }
  std::optional<WatchId> Watch(const Path&) override { return std::nullopt; }
  void Unwatch(WatchId) override {}
  std::vector<FolderChange> Take() override { return {}; }
  int Handle() const override { return m_handle; }

 private:
  const int m_handle = eventfd(0, EFD_CLOEXEC);
};

}  // namespace tarnel::test
