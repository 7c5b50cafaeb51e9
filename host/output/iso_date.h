// Dates for files of other programs.
#pragma once

#include <string>

namespace qcalc {

/// Appends what the serial stands for by ISO 8601: 2026-11-23, 2026-11-23T14:05:00, a time alone (below 1) 14:05:00;
/// fractions of seconds to the millisecond, where there are any. False, and nothing appended, for a number that is no
/// date of Excel's, and for 29 February 1900, which no other calendar has. `uses1904` for the system that counts from
/// 1 January 1904.
bool AppendIsoDate(std::string& out, double serial, bool uses1904);

}  // namespace qcalc
