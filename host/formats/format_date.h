// Dates and times in the sections of formats.
#pragma once

#include <optional>

#include "host/formats/format_section.h"

namespace qcalc {

/// The serial, of the date system in `marks`, in a section of kind kDate, with English names. Times are rounded to the
/// fraction of seconds that is shown, at least to seconds. Nothing for negative serials and those beyond the year 9999.
std::optional<XString> FormatDate(double serial, const FormatSection& section, NumberMarks marks);

}  // namespace qcalc
