// A number format such as `#,##0.00;[Red](0.00);"none";@` in its parts.
#pragma once

#include <optional>
#include <vector>

#include "host/values/number_marks.h"

namespace qcalc {

struct FormatToken {
  enum class Kind {
    kLiteral,      ///< `text`
    kDigit,        ///< `mark` is 0, # or ?
    kDecimalMark,  ///< of the number, and before fractions of seconds
    kThousands,
    kPercent,
    kExponent,    ///< `mark` is E or e, `count` 1 where a plus is shown
    kSlash,       ///< of a fraction, or between parts of a date
    kFixedDigit,  ///< `mark` is 1 to 9: part of a denominator, else a literal
    kText,        ///< @
    kGeneral,
    // Parts of dates and times; `count` letters.
    kYear,
    kMonth,
    kDay,
    kHour,
    kMinute,
    kSecond,
    kHalfDay,         ///< AM/PM or A/P, which is `text`
    kSecondFraction,  ///< `count` digits
    kElapsedHours,
    kElapsedMinutes,
    kElapsedSeconds
  };
  Kind kind = Kind::kLiteral;
  XString text;
  XCHAR mark = 0;
  int count = 0;

  bool Is(Kind other) const { return kind == other; }
  bool IsDatePart() const { return kind >= Kind::kYear; }
};

/// [<10] and its like.
struct FormatCondition {
  enum class Test { kLess, kLessOrEqual, kEqual, kNotEqual, kGreaterOrEqual, kGreater } test = Test::kLess;
  double limit = 0;

  bool Takes(double number) const;
  /// Whether it takes negative numbers alone: these show no sign then.
  bool TakesNegativesOnly() const;
};

struct FormatSection {
  enum class Kind { kLiterals, kNumber, kScientific, kFraction, kDate, kGeneral, kText };
  Kind kind = Kind::kLiterals;
  std::vector<FormatToken> tokens;
  std::optional<FormatCondition> condition;
  int scale = 0;           ///< the number is shown times ten to that power: percent signs, thousands left out
  bool isGrouped = false;  ///< marks between thousands
};

/// The sections of a format, one to four; nothing when it is none of Excel's. `marks` are those that it is written
/// with.
std::optional<std::vector<FormatSection>> ParseFormat(XStringView format, NumberMarks marks);

}  // namespace qcalc
