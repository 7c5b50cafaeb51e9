// The keys of a lookup.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "frame/values/xl_oper.h"
#include "table/compare.h"

namespace quillmere {

/// A key made ready for comparing, part by part.
using Key = std::span<const PreparedLookupValue>;

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
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return IsEmptyCell(cell) ? zero_ : cell; }

  /// Whether any text of any key holds a wildcard character.
  bool AnyWildcards() const noexcept { return anyWildcards_; }

 private:
  CXlCells cells_;
  XLOPER12 zero_ = NumberCell(0);
  bool caseSensitive_;
  bool anyWildcards_ = false;
};

/// Room for one prepared key, used again for the next.
class KeyRoom {
 public:
  /// Makes a key ready; it lasts until the next is made ready here, or the room goes.
  Key Prepare(const LookupKeys& keys, std::int32_t key);

 private:
  std::vector<PreparedLookupValue> parts_;
  XString folded_;
};

}  // namespace quillmere
