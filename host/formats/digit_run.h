// Digits in the places that a format has for them.
#pragma once

#include <span>

#include "host/formats/format_section.h"
#include "host/values/decimal_digits.h"

namespace qcalc {

/// Writes the whole part of a number, place by place: the first place takes all digits that have none of their own. A
/// place marked 0 shows a digit in any case, one marked ? a blank where no digit is needed, one marked # nothing.
class WholeDigits {
 public:
  /// `number` outlives this. `separator` parts thousands; 0 for none.
  WholeDigits(const DecimalDigits& number, int places, XCHAR separator)
      : number_(number), places_(places), separator_(separator) {}

  /// Appends what the next place shows.
  void WritePlace(XCHAR mark, XString& out);

 private:
  void WriteDigit(int power, XCHAR mark, XString& out);

  const DecimalDigits& number_;
  int places_;
  XCHAR separator_;
  bool isFirst_ = true;
  bool hasZero_ = false;  // behind a 0 no place is left empty
};

/// Places of kind kDigit among the tokens.
int CountPlaces(std::span<const FormatToken> tokens);

/// Appends a whole number in all places among the tokens, and their literals.
void WriteWhole(const DecimalDigits& number, std::span<const FormatToken> tokens, XCHAR separator, XString& out);

}  // namespace qcalc
