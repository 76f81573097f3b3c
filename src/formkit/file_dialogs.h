#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "base/files.h"

class QWidget;

namespace tarnel {

struct FileFilter {
  const char* name;
  const char* patterns;  ///< separated by ";"
};

/// The filter of every dialog that opens a carrier; the first entry is active.
const std::vector<FileFilter>& CarrierFilters();

/// The dialogs that ask for a path. Windows get them from outside, so that tests choose.
class FileDialogs {
 public:
  virtual ~FileDialogs() = default;

  /// An existing file; nothing if the user cancels. An empty `folder` leaves the start to the system.
  virtual std::optional<Path> OpenFile(QWidget* owner, const QString& title, const Path& folder,
                                       const std::vector<FileFilter>& filters) = 0;

  /// A name to save under, whether it exists or not; `suffix` is added where the name has none.
  virtual std::optional<Path> SaveFile(QWidget* owner, const FileFilter& filter, const QString& suffix) = 0;

  virtual std::optional<Path> ChooseFolder(QWidget* owner, const QString& prompt, const QString& label,
                                           const Path& folder) = 0;
};

/// The toolkit's own dialogs, which leave no trace: the desktop's keep lists of recent files, and the
/// toolkit's write the last folder into a file of their own. Making one turns off all settings files of the
/// toolkit in this process.
class TracelessFileDialogs : public FileDialogs {
 public:
  TracelessFileDialogs();

  std::optional<Path> OpenFile(QWidget* owner, const QString& title, const Path& folder,
                               const std::vector<FileFilter>& filters) override;
  std::optional<Path> SaveFile(QWidget* owner, const FileFilter& filter, const QString& suffix) override;
  std::optional<Path> ChooseFolder(QWidget* owner, const QString& prompt, const QString& label,
                                   const Path& folder) override;
};

}  // namespace tarnel
