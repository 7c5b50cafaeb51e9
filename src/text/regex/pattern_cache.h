// The expressions of one worksheet call, each compiled once.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "frame/locale/collation.h"
#include "frame/values/cell.h"
#include "text/regex/regex_budget.h"
#include "text/regex/regex_pattern.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Keeps what was compiled, up to so many expressions that they take no memory worth speaking of.
class PatternCache {
 public:
  PatternCache(RegexBudget& budget, LetterCase letterCase, RegexExtent extent = RegexExtent::kAnyPart)
      : budget_(budget), letterCase_(letterCase), extent_(extent) {}

  /// The expression that a cell's text form is: null for what does not compile. It lasts until the next is asked for.
  const RegexPattern* Find(const XLOPER12& cell);

 private:
  RegexBudget& budget_;
  LetterCase letterCase_;
  RegexExtent extent_;
  const XLOPER12* latestCell_ = nullptr;
  const RegexPattern* latest_ = nullptr;
  XString expression_;  ///< the host's memory is read into it
  std::unordered_map<XString, std::unique_ptr<const RegexPattern>> patterns_;
};

}  // namespace quillmere::text
