// The forms in which a formula's result may be printed.
#pragma once

#include <string>

#include "host/values/value.h"

namespace qcalc {

enum class ResultFormat {
  kLiteral,
  kCsv,   ///< RFC 4180: a record a row, an empty cell as an empty field, a text of length zero as ""
  kJson,  ///< a value, or an array of rows; empty cells are null, errors {"error":"#N/A"}
};

/// The result in lines that end in LF, UTF-8, numbers in as many digits as tell them apart. References must be read
/// before. In CSV and JSON a lone surrogate, which UTF-8 cannot write, is U+FFFD.
std::string FormatResult(const Value& value, ResultFormat format);

}  // namespace qcalc
