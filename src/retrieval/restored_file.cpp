#include "retrieval/restored_file.h"

#include <charconv>
#include <optional>

#include "base/attributes.h"
#include "carrier/format.h"
#include "carrier/tags.h"

namespace tarnel {

mode_t RestoredModeOf(std::string_view record) {
  const std::string_view text = GetTag(record, tag::kMode);
  unsigned bits = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), bits, 8);
  const bool isMode = fault == std::errc() && end == text.data() + text.size();
  const double word = ReadNumber(GetTag(record, tag::kAttributes));
  const bool isWord = word >= 0 && word <= 0xFFFF;
  return RestoredMode(isMode ? std::optional<mode_t>(bits & 0777) : std::nullopt,
                      isWord ? static_cast<int>(word) : attribute::Archive);
}

}  // namespace tarnel
