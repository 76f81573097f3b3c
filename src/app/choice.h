#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/session.h"
#include "retrieval/run_extract.h"

namespace tarnel {

/// What extract, delete and view work on. It holds copies, so it stays true when a window comes up, settings
/// are read anew, or the selection goes: take it first.
struct Choice {
  Path carrier;
  /// With the list in attention its selected rows, with the tree in attention all of them; in the order of
  /// the list. Extract and Delete take these.
  std::vector<ExtractChoice> rows;
  /// Of the selected node, for ExtractRequest.
  std::string nodeItemFolder{kRootFolder};
  std::string nodePath;
  /// The current row of the list, as index in the catalogue, if it is selected and a file. View takes this.
  std::optional<std::size_t> file;
};

Choice ChoiceOf(const Session& session);

}  // namespace tarnel
