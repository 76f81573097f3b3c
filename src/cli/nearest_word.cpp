#include "cli/nearest_word.h"

#include <algorithm>
#include <numeric>

namespace tarnel {

namespace {

std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t corner = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = corner + (a[i] == b[j] ? 0 : 1);
      corner = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, corner + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string NearestWord(std::string_view typed, const std::vector<std::string>& words) {
  constexpr std::size_t kLongest = 64;
  if (typed.size() < 2 || typed.size() > kLongest) return {};
  std::string nearest;
  std::size_t least = std::max<std::size_t>(typed.size() / 3, 1) + 1;
  for (const std::string& word : words) {
    if (typed.size() > 2 && word.starts_with(typed)) return word;
    const std::size_t distance = Distance(typed, word);
    if (distance >= least) continue;
    least = distance;
    nearest = word;
  }
  return nearest;
}

}  // namespace tarnel
