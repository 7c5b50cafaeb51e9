#include "host/text/text_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "host/text/collation.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

// Most texts hold nothing else. Most languages order them unit by unit, in this order.
constexpr XStringView kPlainUnits = XTEXT(" 0123456789abcdefghijklmnopqrstuvwxyz");

constexpr auto kPlainRanks = [] {
  std::array<std::uint8_t, 128> ranks{};
  for (std::size_t unit = 0; unit < ranks.size(); ++unit)
    ranks[unit] = static_cast<std::uint8_t>(kPlainUnits.find(SmallLetter(static_cast<XCHAR>(unit))) + 1);
  return ranks;
}();

// From 1 on; 0 for what is not plain.
int PlainRank(XCHAR unit) {
  const unsigned u = static_cast<std::uint16_t>(unit);
  return u < kPlainRanks.size() ? kPlainRanks[u] : 0;
}

// Some languages have letters of several units ("ch"), or order some letters otherwise.
bool IsPlainOrderThatOfLanguage() {
  XString last;
  for (const XCHAR first : kPlainUnits) {
    if (CompareInLanguage(last, XString(1, first)) >= 0) return false;
    last = first;
    for (const XCHAR second : kPlainUnits) {
      const XString next{first, second};
      if (CompareInLanguage(last, next) >= 0) return false;
      last = next;
    }
  }
  return true;
}

// What the first plain difference says, where no accent and no letter of several units can have a part in it: then all
// before it is the same to the language, too. Nothing where the language has to be asked.
std::optional<std::weak_ordering> ComparePlain(XStringView left, XStringView right) {
  const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end(),
                                    [](XCHAR a, XCHAR b) { return FoldUnit(a) == FoldUnit(b); });
  if (l == left.end() && r == right.end()) return std::weak_ordering::equivalent;
  static const bool isAllowed = IsPlainOrderThatOfLanguage();
  if (!isAllowed || (l != left.begin() && PlainRank(l[-1]) == 0)) return std::nullopt;
  constexpr int kNotPlain = -1;
  const auto rankOf = [](auto unit, auto end) {
    if (unit == end) return 0;
    return PlainRank(*unit) == 0 || (unit + 1 != end && PlainRank(unit[1]) == 0) ? kNotPlain : PlainRank(*unit);
  };
  const int leftRank = rankOf(l, left.end()), rightRank = rankOf(r, right.end());
  if (leftRank == kNotPlain || rightRank == kNotPlain) return std::nullopt;
  return leftRank <=> rightRank;
}

}  // namespace

std::weak_ordering CompareTexts(XStringView left, XStringView right) {
  if (const auto order = ComparePlain(left, right)) return *order;
  const XString l = FoldCase(left), r = FoldCase(right);
  const auto order = CompareInLanguage(l, r);
  return order != 0 ? order : l <=> r;
}

}  // namespace qcalc
