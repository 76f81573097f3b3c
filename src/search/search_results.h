#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "crypto/algorithm.h"

namespace tarnel {

/// One carrier that the password opens.
struct SearchRow {
  Path carrier;                                  ///< the row's key
  std::string name;                              ///< file name, platform bytes
  WipedText title;                               ///< of the newest hideout entry that fits, stored text
  Path location;                                 ///< the parent folder
  Algorithm algorithm = Algorithm::Rijndael256;  ///< that opens it
};

/// The result list. It outlives a search: the next one adds to it, and what is listed isn't added again.
class SearchResults {
 public:
  const std::vector<SearchRow>& Rows() const { return m_rows; }
  bool Contains(const Path& carrier) const { return m_carriers.contains(carrier.native()); }
  void Add(SearchRow row);

  /// Panel 1: the number of rows, then " File(s) found. "; empty before the first.
  std::string CountText() const;

 private:
  std::vector<SearchRow> m_rows;
  std::unordered_set<std::string> m_carriers;
};

}  // namespace tarnel
