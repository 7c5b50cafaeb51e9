// Numbers in the sections of formats that are made of digits.
#pragma once

#include "host/formats/format_section.h"

namespace qcalc {

/// The magnitude in a section of kind kLiterals, kNumber or kScientific, without a sign: rounded half up on the 15
/// digits that Excel shows.
XString FormatMagnitude(double magnitude, const FormatSection& section, NumberMarks marks);

/// The same in a section of kind kFraction: the nearest fraction whose denominator has no more digits than the format,
/// or is the one that it names.
XString FormatFraction(double magnitude, const FormatSection& section, NumberMarks marks);

}  // namespace qcalc
