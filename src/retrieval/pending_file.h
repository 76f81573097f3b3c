#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/files.h"
#include "retrieval/restored_file.h"

namespace tarnel {

/// A new file under a random name, readable by nobody else, until it is complete. Removed with the scope
/// unless it got its name.
class PendingFile {
 public:
  /// `folder` must outlive it.
  explicit PendingFile(Folder& folder);
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  File& Opened() { return *m_file; }

  /// Sets the attributes, the mode as SettleMode does, closes the file and gives it its name, replacing
  /// whatever has that name in one step.
  void Complete(std::string_view name, const RestoredAttributes& attributes);

 private:
  Folder& m_folder;
  std::string m_name;
  std::unique_ptr<File> m_file;
};

}  // namespace tarnel
