#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// The one of `words` that a person may have meant: what begins with `typed`, else what differs least from it
/// by letters missing, added or wrong, if that is few. Empty if nothing is near.
std::string NearestWord(std::string_view typed, const std::vector<std::string>& words);

}  // namespace tarnel
