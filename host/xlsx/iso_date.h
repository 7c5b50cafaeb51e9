// Dates as ISO 8601 writes them.
#pragma once

#include <optional>
#include <string_view>

namespace qcalc {

/// The serial of a date, a time or both (`2024-01-31`, `T12:30:00`, `2024-01-31T12:30:00.5Z`) in the 1900 or the 1904
/// date system; nothing for anything else, and for days that the system does not have. Zones other than Z are none.
std::optional<double> ReadIsoDate(std::string_view text, bool uses1904);

}  // namespace qcalc
