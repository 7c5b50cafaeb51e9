// The characters that an expression stands for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "text/regex/regex.h"

namespace quillmere::text {

/// The units that are matched by an expression, each on its own and as a whole. The expression is asked for a unit when
/// it is met the first time.
class UnitClass {
 public:
  /// CXlBadRegexException for what is no expression. The budget must outlive it.
  UnitClass(XStringView expression, RegexBudget& budget)
      : expression_(expression, LetterCase::kCounts), budget_(budget) {}

  /// CXlRegexLimitException as Regex says.
  bool Has(XCHAR unit) {
    const std::size_t word = unit / kWordBits;
    const std::uint64_t bit = std::uint64_t{1} << unit % kWordBits;
    if ((isKnown_[word] & bit) == 0) [[unlikely]] {
      if (expression_.IsWholeOf({&unit, 1}, budget_)) isIn_[word] |= bit;
      isKnown_[word] |= bit;
    }
    return (isIn_[word] & bit) != 0;
  }

 private:
  static constexpr std::size_t kWordBits = 64;
  static constexpr std::size_t kWords = 0x10000 / kWordBits;

  Regex expression_;
  RegexBudget& budget_;
  std::uint64_t isKnown_[kWords] = {};
  std::uint64_t isIn_[kWords] = {};
};

}  // namespace quillmere::text
