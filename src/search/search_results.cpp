#include "search/search_results.h"

#include <utility>

namespace tarnel {

void SearchResults::Add(SearchRow row) {
  m_carriers.insert(row.carrier.native());
  m_rows.push_back(std::move(row));
}

std::string SearchResults::CountText() const {
  return m_rows.empty() ? std::string() : std::to_string(m_rows.size()) + " File(s) found. ";
}

}  // namespace tarnel
