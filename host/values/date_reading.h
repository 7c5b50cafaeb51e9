// Dates and times as texts, in the English (US) forms that Excel reads.
#pragma once

#include <optional>
#include <string_view>

namespace qcalc {

/// The serial (1900 system: day 1 is 1 January 1900, day 60 the 29 February 1900 that never was) of a date, a time, or
/// a date and a time with a blank between: `23-Mar-2002`, `3/23/2002`, `2002-03-23`, `Mar 23, 2002`, `4:48 PM`,
/// `25:30:00`. Blanks around are the caller's to remove. Dates must name their year; two digits mean 1930 to 2029.
std::optional<double> ReadDateTime(std::string_view text);

}  // namespace qcalc
