#include "host/text/letter_case.h"

#include <algorithm>
#include <cstdint>

namespace qcalc {

XCHAR FoldUnit(XCHAR unit) {
  const unsigned u = static_cast<std::uint16_t>(unit);
  const auto shifted = [u](unsigned by) { return static_cast<XCHAR>(u + by); };
  if (u < 0x80) return SmallLetter(unit);
  if (u >= 0xC0 && u <= 0xDE) return u == 0xD7 ? unit : shifted(32);
  // Latin letters in pairs: the capital is even in these ranges, odd in the others.
  const bool evenCapitals = (u >= 0x100 && u <= 0x12F) || (u >= 0x132 && u <= 0x137) || (u >= 0x14A && u <= 0x177) ||
                            (u >= 0x460 && u <= 0x481) || (u >= 0x48A && u <= 0x4BF) || (u >= 0x4D0 && u <= 0x52F) ||
                            (u >= 0x1E00 && u <= 0x1E95) || (u >= 0x1EA0 && u <= 0x1EFF);
  const bool oddCapitals = (u >= 0x139 && u <= 0x148) || (u >= 0x179 && u <= 0x17E) || (u >= 0x4C1 && u <= 0x4CE);
  if (evenCapitals) return u % 2 == 0 ? shifted(1) : unit;
  if (oddCapitals) return u % 2 == 1 ? shifted(1) : unit;
  if (u == 0x178) return static_cast<XCHAR>(0xFF);
  if (u == 0x386) return static_cast<XCHAR>(0x3AC);
  if (u >= 0x388 && u <= 0x38A) return shifted(37);
  if (u == 0x38C) return static_cast<XCHAR>(0x3CC);
  if (u == 0x38E || u == 0x38F) return shifted(63);
  if (u >= 0x391 && u <= 0x3AB) return u == 0x3A2 ? unit : shifted(32);
  if (u >= 0x400 && u <= 0x40F) return shifted(80);
  if (u >= 0x410 && u <= 0x42F) return shifted(32);
  if (u >= 0x531 && u <= 0x556) return shifted(48);
  if (u >= 0xFF21 && u <= 0xFF3A) return shifted(32);
  return unit;
}

XString FoldCase(XStringView text) {
  XString folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), FoldUnit);
  return folded;
}

bool EqualsIgnoringCase(XStringView left, XStringView right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](XCHAR l, XCHAR r) { return l == r || FoldUnit(l) == FoldUnit(r); });
}

bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char l, char r) { return SmallLetter(l) == SmallLetter(r); });
}

}  // namespace qcalc
