// The keys of a lookup.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "frame/values/xl_oper.h"
#include "table/compare.h"
#include "text/text_matcher.h"

namespace quillmere::lookup {

/// A part of a key made ready.
struct KeyPart {
  PreparedLookupValue value;                         ///< what cells are compared with,
  std::unique_ptr<const text::TextMatcher> pattern;  ///< or, where set, what texts are matched against instead

  bool Matches(const XLOPER12& cell) const {
    if (!pattern) return EqualsLookupValue(cell, value);
    return IsTextCell(cell) && pattern->Matches(TextOf(cell));
  }
};

using Key = std::span<const KeyPart>;

/// All keys of a call as tuples of their parts, a view of the argument. An empty cell is looked for as the number 0.
class LookupKeys {
 public:
  /// Looks at every cell once: what is no single cell is "Bad XLOPER type".
  LookupKeys(const CXlCells& cells, bool caseSensitive);

  std::int32_t Count() const noexcept { return cells_.rows; }
  std::size_t Parts() const noexcept { return static_cast<std::size_t>(cells_.columns); }
  bool CaseSensitive() const noexcept { return caseSensitive_; }

  /// A part of a key (both 0-based), as it is looked for.
  const XLOPER12& At(std::int32_t key, std::size_t part) const noexcept { return Meaning(*CellAt(key, part)); }
  /// The same as it was passed, how far the next key's lies, and what such a cell is looked for as.
  const XLOPER12* CellAt(std::int32_t key, std::size_t part) const noexcept { return cells_.Row(key) + part; }
  std::ptrdiff_t Stride() const noexcept { return cells_.columns; }
  std::int32_t RunEnd(std::int32_t) const noexcept { return cells_.rows; }
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return IsEmptyCell(cell) ? zero_ : cell; }

  /// Whether any part of any key can be a pattern: a text with wildcards.
  bool AnyPatterns() const noexcept { return anyPatterns_; }
  /// Whether a part of this key can.
  bool HasPattern(std::int32_t key) const;
  /// What texts are matched against for a part that can be a pattern; nothing for any other.
  std::unique_ptr<const text::TextMatcher> PatternAt(std::int32_t key, std::size_t part) const;

 private:
  CXlCells cells_;
  XLOPER12 zero_ = NumberCell(0);
  bool caseSensitive_;
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
