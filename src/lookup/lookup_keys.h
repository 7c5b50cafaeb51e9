// The keys of a lookup.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "frame/convert/cell_text.h"
#include "frame/values/xl_oper.h"
#include "table/compare.h"
#include "text/regex/regex_budget.h"
#include "text/text_matcher.h"

namespace quillmere::lookup {

/// Which cells patterns are tried on.
enum class PatternScope : std::int8_t {
  kTexts,   ///< texts alone
  kValues,  ///< numbers and booleans too, by their text form
};

/// What a pattern is tried on in a cell, a view of it or of `buffer`; no data where it matches no pattern.
inline XStringView PatternText(const XLOPER12& cell, PatternScope scope, NumberTextBuffer& buffer) {
  if (IsTextCell(cell)) [[likely]]
    return TextOf(cell);
  if (scope == PatternScope::kTexts || (TypeOf(cell) & (xltypeNum | xltypeInt | xltypeBool)) == 0) return {};
  return TextForm(cell, buffer);
}

/// A part of a key made ready.
struct KeyPart {
  PreparedLookupValue value;                         ///< what cells are compared with,
  std::unique_ptr<const text::TextMatcher> pattern;  ///< or, where set, what texts are matched against instead
  PatternScope scope;

  bool Matches(const XLOPER12& cell) const {
    if (!pattern) return EqualsLookupValue(cell, value);
    NumberTextBuffer number;
    const XStringView text = PatternText(cell, scope, number);
    return text.data() != nullptr && pattern->Matches(text);
  }
};

using Key = std::span<const KeyPart>;

/// All keys of a call as tuples of their parts, a view of the argument. An empty cell is looked for as the number 0.
class LookupKeys {
 public:
  /// A text with wildcards can be a pattern; with `expressions`, the budget of the call, every text is a regular
  /// expression. Looks at every cell once: what is no single cell is "Bad XLOPER type".
  LookupKeys(const CXlCells& cells, bool caseSensitive, text::RegexBudget* expressions = nullptr);

  std::int32_t Count() const noexcept { return cells_.rows; }
  std::size_t Parts() const noexcept { return static_cast<std::size_t>(cells_.columns); }
  bool CaseSensitive() const noexcept { return caseSensitive_; }
  /// Whether texts are regular expressions.
  bool AreExpressions() const noexcept { return expressions_ != nullptr; }
  /// What patterns are tried on.
  PatternScope Scope() const noexcept { return AreExpressions() ? PatternScope::kValues : PatternScope::kTexts; }

  /// A part of a key (both 0-based), as it is looked for.
  const XLOPER12& At(std::int32_t key, std::size_t part) const noexcept { return Meaning(*CellAt(key, part)); }
  /// The same as it was passed, how far the next key's lies, and what such a cell is looked for as.
  const XLOPER12* CellAt(std::int32_t key, std::size_t part) const noexcept { return cells_.Row(key) + part; }
  std::ptrdiff_t Stride() const noexcept { return cells_.columns; }
  std::int32_t RunEnd(std::int32_t) const noexcept { return cells_.rows; }
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return IsEmptyCell(cell) ? zero_ : cell; }

  /// Whether any part of any key can be a pattern.
  bool AnyPatterns() const noexcept { return anyPatterns_; }
  /// Whether a part of this key can.
  bool HasPattern(std::int32_t key) const;
  /// What texts are matched against for a part that can be a pattern; nothing for any other. CXlBadRegexException for
  /// an expression that does not compile.
  std::unique_ptr<const text::TextMatcher> PatternAt(std::int32_t key, std::size_t part) const;

 private:
  bool IsPattern(const XLOPER12& cell) const;

  CXlCells cells_;
  XLOPER12 zero_ = NumberCell(0);
  bool caseSensitive_;
  text::RegexBudget* expressions_;
  bool anyPatterns_ = false;
};

/// Room for one prepared key, used again for the next.
class KeyRoom {
 public:
  /// Makes a key ready; it lasts until the next is made ready here, or the room goes. What can be a pattern is one in
  /// the first `patternParts` parts; all else is compared.
  Key Prepare(const LookupKeys& keys, std::int32_t key, std::size_t patternParts = 0);

 private:
  std::vector<KeyPart> parts_;
  XString folded_;
};

}  // namespace quillmere::lookup
