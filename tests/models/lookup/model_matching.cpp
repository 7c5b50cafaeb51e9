#include "tests/models/lookup/model_matching.h"

#include <algorithm>

namespace qcalc::lookup {
namespace {

/// A unit of a pattern: a character that must stand there, any one, or any number of any.
struct PatternUnit {
  enum class Kind { kPlain, kOne, kRun } kind;
  XCHAR unit;
};

/// The lower case of the letters that the tests use.
XCHAR LowerCase(XCHAR unit) {
  const bool isAccented = unit >= 0xC0 && unit <= 0xDE && unit != 0xD7;
  return isAccented ? static_cast<XCHAR>(unit + 0x20) : FoldLatin(unit);
}

std::vector<PatternUnit> ReadPattern(XStringView text, bool hasEscape) {
  using Kind = PatternUnit::Kind;
  std::vector<PatternUnit> pattern;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const XCHAR unit = text[i];
    const bool isEscape = hasEscape && unit == XTEXT('~') && i + 1 < text.size();
    if (isEscape)
      pattern.push_back({Kind::kPlain, text[++i]});
    else
      pattern.push_back({unit == XTEXT('*') ? Kind::kRun : unit == XTEXT('?') ? Kind::kOne : Kind::kPlain, unit});
  }
  return pattern;
}

/// Tries everything, one character after the other.
bool Fits(std::span<const PatternUnit> pattern, XStringView text, bool caseSensitive) {
  if (pattern.empty()) return text.empty();
  const PatternUnit& first = pattern.front();
  const auto rest = pattern.subspan(1);
  if (first.kind == PatternUnit::Kind::kRun) {
    for (std::size_t skipped = 0; skipped <= text.size(); ++skipped)
      if (Fits(rest, text.substr(skipped), caseSensitive)) return true;
    return false;
  }
  if (text.empty()) return false;
  const bool isEqual = caseSensitive ? first.unit == text.front() : LowerCase(first.unit) == LowerCase(text.front());
  if (first.kind == PatternUnit::Kind::kPlain && !isEqual) return false;
  return Fits(rest, text.substr(1), caseSensitive);
}

}  // namespace

XCHAR FoldLatin(XCHAR unit) {
  return unit >= XTEXT('A') && unit <= XTEXT('Z') ? static_cast<XCHAR>(unit + 0x20) : unit;
}

bool HasWildcards(const CellView& key) {
  return key.IsText() && key.AsText().find_first_of(XTEXT("*?")) != XStringView::npos;
}

bool ExcelMatches(const CellView& cell, const CellView& key) {
  if (cell.Kind() != key.Kind()) return false;
  if (key.IsNumber()) return cell.AsNumber() == key.AsNumber();
  if (key.IsBoolean()) return cell.AsBoolean() == key.AsBoolean();
  return key.IsText() && Fits(ReadPattern(key.AsText(), true), cell.AsText(), false);
}

bool FitsPattern(const CellView& cell, const CellView& key, bool caseSensitive) {
  return cell.IsText() && Fits(ReadPattern(key.AsText(), false), cell.AsText(), caseSensitive);
}

bool EqualLabels(XStringView a, XStringView b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](XCHAR left, XCHAR right) { return FoldLatin(left) == FoldLatin(right); });
}

}  // namespace qcalc::lookup
