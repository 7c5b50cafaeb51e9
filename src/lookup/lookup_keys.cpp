#include "lookup/lookup_keys.h"

#include <algorithm>

#include "text/regex/regex_pattern.h"
#include "text/wildcard_pattern.h"

namespace quillmere::lookup {

LookupKeys::LookupKeys(const CXlCells& cells, bool caseSensitive, text::RegexBudget* expressions)
    : cells_(cells), caseSensitive_(caseSensitive), expressions_(expressions) {
  for (const XLOPER12& cell : std::span(cells.first, static_cast<std::size_t>(cells.Count())))
    if (CellType(cell) == xltypeStr && !anyPatterns_) anyPatterns_ = IsPattern(cell);
}

bool LookupKeys::IsPattern(const XLOPER12& cell) const {
  return IsTextCell(cell) && (AreExpressions() || text::HasWildcards(TextOf(cell)));
}

bool LookupKeys::HasPattern(std::int32_t key) const {
  if (!anyPatterns_) return false;
  const std::span parts(CellAt(key, 0), Parts());
  return std::ranges::any_of(parts, [this](const XLOPER12& cell) { return IsPattern(cell); });
}

std::unique_ptr<const text::TextMatcher> LookupKeys::PatternAt(std::int32_t key, std::size_t part) const {
  const XLOPER12& cell = At(key, part);
  if (!anyPatterns_ || !IsPattern(cell)) return nullptr;
  if (!expressions_) return std::make_unique<text::WildcardPattern>(TextOf(cell), caseSensitive_);
  const LetterCase letterCase = caseSensitive_ ? LetterCase::kCounts : LetterCase::kIgnored;
  return std::make_unique<text::RegexPattern>(TextOf(cell), *expressions_, letterCase);
}

Key KeyRoom::Prepare(const LookupKeys& keys, std::int32_t key, std::size_t patternParts) {
  std::size_t units = 0;
  for (std::size_t part = 0; part < keys.Parts(); ++part)
    if (const XLOPER12& cell = keys.At(key, part); IsTextCell(cell)) units += TextOf(cell).size();
  if (folded_.size() < units) folded_.resize(units);

  parts_.clear();
  XCHAR* next = folded_.data();
  for (std::size_t part = 0; part < keys.Parts(); ++part) {
    parts_.push_back({PrepareLookupValue(keys.At(key, part), keys.CaseSensitive(), next), nullptr, keys.Scope()});
    if (part < patternParts) parts_.back().pattern = keys.PatternAt(key, part);
    next += parts_.back().value.text.size();
  }
  return parts_;
}

}  // namespace quillmere::lookup
