#include "app/size_order.h"

#include <iterator>
#include <list>
#include <map>

namespace tarnel {

namespace {

using Rows = std::list<std::size_t>;

Rows Ascending(const std::vector<double>& sizes) {
  Rows rows;
  std::map<double, Rows::iterator> firstOfSize;
  for (std::size_t row = 0; row < sizes.size(); ++row) {
    const auto above = firstOfSize.upper_bound(sizes[row]);
    const auto place = above == firstOfSize.begin() ? rows.begin() : std::next(std::prev(above)->second);
    firstOfSize.emplace(sizes[row], rows.insert(place, row));
  }
  return rows;
}

/// Rows that are not empty stand in falling order, so the last one not below a size is the last of the
/// nearest size.
Rows Descending(const std::vector<double>& sizes) {
  Rows rows;
  std::map<double, Rows::iterator> lastOfSize;
  for (std::size_t row = 0; row < sizes.size(); ++row) {
    auto place = rows.begin();
    if (sizes[row] == 0) {
      if (!rows.empty() && sizes[rows.back()] != 0) place = rows.end();
      rows.insert(place, row);
      continue;
    }
    const auto notBelow = lastOfSize.lower_bound(sizes[row]);
    if (notBelow != lastOfSize.end()) place = std::next(notBelow->second);
    lastOfSize.insert_or_assign(sizes[row], rows.insert(place, row));
  }
  return rows;
}

}  // namespace

std::vector<std::size_t> OrderBySize(const std::vector<double>& sizes, SizeOrder order) {
  const Rows rows = order == SizeOrder::Ascending ? Ascending(sizes) : Descending(sizes);
  return {rows.begin(), rows.end()};
}

}  // namespace tarnel
