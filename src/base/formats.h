#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace tarnel {

/// `bytes` / 1024 in the pattern "#,0": a whole number, halves rounded away from zero, a comma between groups
/// of three digits, whatever the locale. What is no number shows as "nan" or "inf".
std::string GroupedKilobytes(double bytes);

/// A number as the runtime shows it: no grouping, a point, 15 digits at most, an exponent only from 1E+15 on.
std::string PlainNumber(double number);

/// The moment in local time: short date, blank, time, both in the locale's form. Not meant to be parsed.
std::string DateAndTime(std::time_t moment);

/// The moment in local time as "DD.MM.YYYY hh:nn:ss", whatever the locale.
std::string DottedDateAndTime(std::time_t moment);

/// "999 B", "1.2 MiB": one decimal place from 1 KiB on, in powers of 1024, for progress lines and reports.
std::string HumanSize(std::int64_t bytes);

/// "1.2 MiB/s"; "-" as long as no time has passed.
std::string Rate(std::int64_t bytes, double seconds);

/// "0:07", "12:34", "2:03:04": whole seconds, rounded up so that remaining time shows 0:00 only at the end.
/// "-" for a negative, unknown (nan) or endless time.
std::string Duration(double seconds);

}  // namespace tarnel
