#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnel {

/// The date of hiding in the form of ISO 8601, with its offset, such as "2026-11-23T04:29:53+01:00". A record
/// holds it as text of the writer's language and place; this is what it says in those of this process.
/// Nothing where it says nothing there.
std::optional<std::string> IsoOfDateText(const std::string& text);

/// Seconds since 1970 as "2026-11-23T03:29:53Z".
std::string IsoOfMoment(std::int64_t seconds);

}  // namespace tarnel
