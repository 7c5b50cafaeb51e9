// The names that a book gives to cells, values and formulas.
#pragma once

#include <map>

#include "host/formulas/formula.h"
#include "host/text/letter_case.h"

namespace qcalc {

/// So many names one formula may use, those in its names counted, which may stand for more than could ever be
/// calculated.
constexpr int kMostNamesFollowed = 10'000;

/// Names are without case. References without `$` are those of a formula in A1 and go along with the cell that uses the
/// name. Any number of threads may look while none defines.
class DefinedNames {
 public:
  /// Gives the name to the formula, anew where it had one: on the sheet with that id, or with id 0 in the whole book.
  void Define(XStringView name, IDSHEET sheet, Formula formula);
  /// What the name means to a formula of that sheet, whose own names go before the book's; null for nothing.
  const Formula* Find(XStringView name, IDSHEET sheet) const;

 private:
  CaselessMap<XString, std::map<IDSHEET, Formula>> formulas_;
};

}  // namespace qcalc
