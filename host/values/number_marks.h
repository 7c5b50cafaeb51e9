// The marks between the digits of numbers in texts.
#pragma once

#include "xlcall/xchar.h"

namespace qcalc {

/// What the regional settings say of them. Where the decimal separator is the comma, the point parts thousands.
struct NumberMarks {
  XCHAR decimal = XTEXT('.');

  constexpr XCHAR Thousands() const { return decimal == XTEXT(',') ? XTEXT('.') : XTEXT(','); }
};

}  // namespace qcalc
