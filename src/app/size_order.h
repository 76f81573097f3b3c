#pragma once

#include <cstddef>
#include <vector>

namespace tarnel {

enum class SizeOrder { Ascending, Descending };

/// The order in which the file list shows rows of these sizes: indices into `sizes`, none of them negative.
///
/// The order is that of rows inserted one by one. Ascending: behind the first row in the list that has the
/// largest size not above the new one's, or at the top if there is none; so a third row of one size stands
/// between the first two. Descending: behind the last row in the list whose size is not below the new one's,
/// or at the top if there is none or that row is empty; so empty files gather at the ends. Takes n log n
/// steps.
std::vector<std::size_t> OrderBySize(const std::vector<double>& sizes, SizeOrder order);

}  // namespace tarnel
