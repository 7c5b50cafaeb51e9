// Dates and times as texts, in the English (US) forms that Excel reads.
#pragma once

#include <optional>

#include "host/values/number_marks.h"

namespace qcalc {

/// The serial, in the book's date system, of a date, a time, or a date and a time with a blank between. Blanks around
/// are the caller's to remove. Years are 1900 (or 1904) to 9999; two digits mean 1930 to 2029.
///   whole dates: `3/23/2002`, `2002-03-23`, `23-Mar-2002`, `Mar 23, 2002`
///   months: `July 2021`, `7/2021`, `2021-07`, their first day
///   days of the current year: `3/23`, `23-Mar`, `Mar 23`; what is no day of that month is its year: `Mar 32`, `2/30`
///   times: `4:48 PM`, `4 PM`, `25:30:00`, `1:30.5` (minutes and seconds)
std::optional<double> ReadDateTime(XStringView text, NumberMarks marks);

}  // namespace qcalc
