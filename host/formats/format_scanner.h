// Number formats, character by character.
#pragma once

#include "host/formats/format_section.h"

namespace qcalc {

/// Takes a format apart from its front.
class FormatScanner {
 public:
  /// `format` outlives the scanner.
  FormatScanner(XStringView format, NumberMarks marks) : rest_(format), marks_(marks) {}

  /// Takes the tokens and the condition of one section, up to a semicolon or the end. False when something stands there
  /// that no format holds.
  bool TakeSection(FormatSection& section);
  bool AcceptSemicolon();

 private:
  bool TakeToken(FormatSection& section);
  void TakeQuoted(FormatSection& section);
  bool TakeEscape(FormatSection& section);
  bool TakeSecondFraction(FormatSection& section);
  bool TakeLetters(FormatSection& section);
  bool TakeDatePart(FormatSection& section);
  bool TakeExponent(FormatSection& section);
  bool TakeBracket(FormatSection& section);
  bool TakeCondition(XStringView inside, FormatSection& section) const;
  bool AcceptWord(XStringView word);
  XCHAR Take();

  XStringView rest_;
  NumberMarks marks_;
};

}  // namespace qcalc
