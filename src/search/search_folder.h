#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "base/secret.h"
#include "carrier/probe_carrier.h"
#include "crypto/algorithm.h"
#include "search/search_results.h"

namespace tarnel {

/// The items of the list "Algorithm:". The first stands for all of them; the others go through AlgorithmId.
std::vector<std::string> SearchAlgorithms();

/// What to look for. The rest is read anew for each file, so that a caller may change it whenever events
/// run.
struct SearchRequest {
  Path folder;  ///< read once, at the beginning; an empty path is no folder, and nothing happens
  Secret password;
  std::size_t type = 0;                ///< index in CarrierTypes()
  std::optional<Algorithm> algorithm;  ///< all seven, one after the other, if there is none
  bool subfolders = false;
  /// The check box "Deep-search" asks for the newest entry only, whatever its caption says.
  ProbeRequest::Depth depth = ProbeRequest::Depth::WholeChain;
  /// Files of fewer than 80 bytes, and such as can't be read. Probed, the first short one ends all finding
  /// for the life of the guards, and so does Abort at the probe's question about an unreadable one. Passed
  /// over, neither ends anything, and what can't be read is named in the summary instead of asked about: its
  /// other algorithms are still tried, for a fault may lie behind the entry that fits.
  enum class OddFiles { Probe, PassOver } oddFiles = OddFiles::Probe;
};

/// A folder or file that could not be searched.
struct NotSearched {
  Path path;
  std::string reason;  ///< a sentence that names the path
};

/// What a search shows.
class SearchScreen : public virtual Dialogue {
 public:
  /// The files of this folder are next.
  virtual void ShowFolder(const Path& folder) = 0;
  /// The row stands in the results now.
  virtual void ShowFound(const SearchRow& row) = 0;
  /// The summary will name this one. For who tells it while the search runs.
  virtual void ShowNotSearched(const NotSearched&) {}
};

/// "Searching... " and the folder.
std::string SearchingText(const Path& folder);

enum class SearchEnding { Done, Cancelled, NoPassword };

struct SearchSummary {
  SearchEnding ending = SearchEnding::Done;
  std::size_t found = 0;  ///< rows added by this search
  std::vector<NotSearched> notSearched;
};

/// Looks through the files of the folder, and of those below it if wanted, for carriers that the password
/// opens, and adds them to `results`. An empty password is refused with a message before any file is looked
/// at. Files are chosen by their extension; one without is never tried. Yields before each file, inside each
/// probe, and every 20 ms while a folder or file keeps it waiting; a cancel leaves the results found so far.
/// A symbolic link to a folder is searched after all that need none, and no folder is searched twice. A
/// folder below that can't be listed is named in the summary; for the first the Error passes through. Of
/// `reading` the files and the guards are used; no hideout need be open.
SearchSummary SearchFolder(const SearchRequest& request, SearchResults& results, Reading& reading,
                           SearchScreen& screen);

}  // namespace tarnel
