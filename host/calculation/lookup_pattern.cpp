#include "host/calculation/lookup_pattern.h"

#include <cstddef>

#include "host/text/letter_case.h"

namespace qcalc {

LookupPattern::LookupPattern(XStringView text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    XCHAR unit = text[i];
    if (unit == XTEXT('*') || unit == XTEXT('?')) {
      elements_.push_back({unit == XTEXT('*') ? Kind::kRun : Kind::kOne, XCHAR{}});
      hasWildcards_ = true;
      continue;
    }
    if (unit == XTEXT('~')) {
      if (++i == text.size()) break;
      unit = text[i];
    }
    elements_.push_back({Kind::kUnit, FoldUnit(unit)});
  }
}

XString LookupPattern::Literal() const {
  XString literal;
  for (const Element& element : elements_) literal.push_back(element.unit);
  return literal;
}

std::size_t LookupPattern::FindIn(XStringView text, std::size_t start) const {
  // Only what stands before the first run can miss at one place and fit at a later one: what misses behind it misses
  // for good.
  bool missedBehindRun = false;
  for (; start <= text.size() && !missedBehindRun; ++start)
    if (MatchesAt(text, start, false, &missedBehindRun)) return start;
  return XStringView::npos;
}

// Whether the text from that unit on fits, as a whole or with its beginning.
bool LookupPattern::MatchesAt(XStringView text, std::size_t unit, bool toTheEnd, bool* missedBehindRun) const {
  // A run that turns out too short takes one unit more; runs before the last one need never be looked at again.
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t element = 0, lastRun = kNone, runEnd = 0;
  while (unit < text.size()) {
    if (!toTheEnd && element == elements_.size()) return true;
    const Element* next = element < elements_.size() ? &elements_[element] : nullptr;
    if (next && next->kind == Kind::kRun) {
      lastRun = element++;
      runEnd = unit;
    } else if (next && (next->kind == Kind::kOne || next->unit == FoldUnit(text[unit]))) {
      ++element;
      ++unit;
    } else if (lastRun != kNone) {
      element = lastRun + 1;
      unit = ++runEnd;
    } else {
      return false;
    }
  }
  while (element < elements_.size() && elements_[element].kind == Kind::kRun) ++element;
  if (missedBehindRun) *missedBehindRun = lastRun != kNone;
  return element == elements_.size();
}

}  // namespace qcalc
