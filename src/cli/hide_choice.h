#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/given_input.h"
#include "cli/screens.h"
#include "cli/workbench.h"
#include "hiding/selection.h"

namespace tarnel {

/// What a hide takes, of what the person has named.
class HideChoice {
 public:
  HideChoice(const HideOptions& options, Surroundings& around);

  /// Collects the files and says what is passed over. Throws CliFailure: Usage, Failed for what isn't there
  /// or where nothing is left to hide, Cancelled.
  void Collect();

  const std::vector<HideRow>& Rows() const { return m_rows; }
  /// Sum of their sizes.
  Length TotalBytes() const { return m_totalBytes; }
  /// The paths that the entries will have.
  std::vector<std::string> EntryPaths() const;
  const std::vector<Path>& PassedOver() const { return m_passedOver; }
  const std::vector<Path>& EmptyFolders() const { return m_emptyFolders; }
  /// HideRequest::chosen: without folders in which anything is left, in whose place the trash gets the files.
  std::vector<Path> Removable() const;

  /// For messages.
  std::string Shown(const Path& source) const;

 private:
  struct Named {
    Path path;
    bool isFolder = false;
    bool isLeftStanding = false;  ///< something below it isn't hidden
  };

  void Name(const std::string& given);
  void TakeInput();
  void TakeRows();
  bool IsExcluded(const Path& path);
  bool IsLinkToPassOver(const Path& path);
  Named* FolderAbove(const Path& path);
  void PassOver(const Path& path, const std::string& reason);
  void FindEmptyFolders(const Path& folder);
  void Say();

  const HideOptions& m_options;
  Surroundings& m_around;
  SelectionOnTerminal m_screen;
  Selection m_selection;
  std::vector<Named> m_named;
  std::optional<HeldInput> m_input;
  std::vector<HideRow> m_rows;
  Length m_totalBytes = 0;
  std::vector<Path> m_passedOver;
  std::vector<Path> m_emptyFolders;
};

}  // namespace tarnel
