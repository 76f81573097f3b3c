#pragma once

#include <cstddef>
#include <vector>

#include "retrieval/carrier_rewrite.h"

namespace tarnel {

struct DeleteRequest {
  std::vector<std::size_t> rows;  ///< of the current carrier, as indices in the mirror; doubles do no harm
  Leftover leftover = Leftover::Refuse;
};

struct DeleteResult {
  RewriteEnding ending = RewriteEnding::Done;
  std::size_t deleted = 0;  ///< entries that are gone
  Path temporary;           ///< set where the complete new carrier was left beside the old one
};

/// Takes the rows' entries out of the current carrier (reading.current) and reloads the hideout. All other
/// bytes stay as they are and in their order. With its last entry gone the hideout keeps its root node only.
/// A carrier that consists of deleted entries alone becomes an empty file. No rows: nothing happens.
/// Cancel is looked at before each stretch that stays and before each full block of it, and
/// before the new carrier takes the old one's place.
/// Errors before the first byte is written are thrown, as CarrierRewrite does.
DeleteResult RunDelete(const DeleteRequest& request, Reading& reading, RewriteScreen& screen);

}  // namespace tarnel
