#include "lookup/lookup_keys.h"

#include "text/wildcard_pattern.h"

namespace quillmere {

LookupKeys::LookupKeys(const CXlCells& cells, bool caseSensitive) : cells_(cells), caseSensitive_(caseSensitive) {
  for (const XLOPER12& cell : std::span(cells.first, static_cast<std::size_t>(cells.Count())))
    if (CellType(cell) == xltypeStr && !anyWildcards_) anyWildcards_ = HasWildcards(TextOf(cell));
}

Key KeyRoom::Prepare(const LookupKeys& keys, std::int32_t key) {
  std::size_t units = 0;
  for (std::size_t part = 0; part < keys.Parts(); ++part)
    if (const XLOPER12& cell = keys.At(key, part); IsTextCell(cell)) units += TextOf(cell).size();
  if (folded_.size() < units) folded_.resize(units);

  parts_.clear();
  XCHAR* next = folded_.data();
  for (std::size_t part = 0; part < keys.Parts(); ++part) {
    parts_.push_back(PrepareLookupValue(keys.At(key, part), keys.CaseSensitive(), next));
    next += parts_.back().text.size();
  }
  return parts_;
}

}  // namespace quillmere
