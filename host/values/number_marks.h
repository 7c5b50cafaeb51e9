// How numbers and dates stand in texts.
#pragma once

#include "xlcall/xchar.h"

namespace qcalc {

/// What the regional settings and the book say of them. Where the decimal separator is the comma, the point parts
/// thousands.
struct NumberMarks {
  XCHAR decimal = XTEXT('.');
  /// The book counts its days from 1 January 1904, which is 0, as those from old Macintoshes do; else from 1900.
  bool uses1904 = false;

  constexpr XCHAR Thousands() const { return decimal == XTEXT(',') ? XTEXT('.') : XTEXT(','); }
};

}  // namespace qcalc
