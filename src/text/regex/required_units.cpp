#include "text/regex/required_units.h"

namespace quillmere::text {
namespace {

bool IsOneOf(XCHAR unit, XStringView units) { return units.find(unit) != XStringView::npos; }

/// The units of a set at the beginning of `text`, brackets included; 0 for one that holds more than plain members.
std::size_t PlainSet(XStringView text) {
  const std::size_t first = text.substr(1, 1) == XTEXT("^") ? 2 : 1;
  const std::size_t end = text.find_first_of(XTEXT("[]\\"), first);
  return end != XStringView::npos && end > first && text[end] == XTEXT(']') ? end + 1 : 0;
}

}  // namespace

RequiredUnits::RequiredUnits(XStringView expression, LetterCase letterCase)
    : anyCase_(letterCase == LetterCase::kIgnored) {
  if (Read(expression)) return;
  units_.clear();
  least_ = 0;
}

/// False where the expression holds what is not read here.
bool RequiredUnits::Read(XStringView rest) {
  const bool isAnchored = rest.starts_with(XTEXT('^'));
  if (isAnchored) rest.remove_prefix(1);
  bool isFirst = true;
  while (!rest.empty()) {
    if (rest == XTEXT("$")) return true;
    XCHAR literal = 0;  // none
    std::size_t units = 1;
    if (rest.front() == XTEXT('[')) {
      units = PlainSet(rest);
      if (units == 0) return false;
    } else if (rest.front() == XTEXT('\\')) {
      units = 2;
      if (rest.size() < 2 || !IsOneOf(rest[1], XTEXT("dDwWsS.^$|()[]{}*+?\\-/"))) return false;
      if (!IsOneOf(rest[1], XTEXT("dDwWsS"))) literal = rest[1];
    } else if (IsOneOf(rest.front(), XTEXT("^$|(){}]*+?"))) {
      return false;
    } else if (rest.front() != XTEXT('.') && IsPlain(rest.front())) {
      literal = Folded(rest.front());
    }
    rest.remove_prefix(units);

    bool mayLack = false;
    if (!rest.empty() && IsOneOf(rest.front(), XTEXT("*+?"))) {
      mayLack = rest.front() != XTEXT('+');
      rest.remove_prefix(1);
      if (!rest.empty() && IsOneOf(rest.front(), XTEXT("+?")))
        rest.remove_prefix(1);  // possessive, or as few as will do
    }
    const bool isRequired = literal != 0 && !mayLack;
    if (isRequired) units_ += literal;
    if (!mayLack) ++least_;
    begins_ = begins_ || (isRequired && isAnchored && isFirst);
    ends_ = isRequired && rest == XTEXT("$");
    isFirst = false;
  }
  return true;
}

}  // namespace quillmere::text
