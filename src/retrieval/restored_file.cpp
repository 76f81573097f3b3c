#include "retrieval/restored_file.h"

#include <charconv>
#include <optional>

#include "base/attributes.h"
#include "carrier/format.h"
#include "carrier/tags.h"

namespace tarnel {

namespace {

/// The number if the value is nothing but its digits.
template <class Number>
std::optional<Number> Whole(std::string_view text, int base) {
  Number number{};
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  const bool isWhole = fault == std::errc() && end == text.data() + text.size();
  return isWhole ? std::optional(number) : std::nullopt;
}

mode_t ModeOf(std::string_view record) {
  const std::optional<mode_t> bits = Whole<mode_t>(GetTag(record, tag::kMode), 8);
  const double word = ReadNumber(GetTag(record, tag::kAttributes));
  const bool isWord = word >= 0 && word <= 0xFFFF;
  return RestoredMode(bits, isWord ? static_cast<int>(word) : attribute::kArchive);
}

}  // namespace

RestoredAttributes RestoredAttributesOf(std::string_view record) {
  return {.mode = ModeOf(record), .modified = Whole<std::int64_t>(GetTag(record, tag::kMtime), 10)};
}

}  // namespace tarnel
