// Any pattern and any text: the matcher says what a slow and plain one says, for one text and for a column of one.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <span>
#include <vector>

#include "frame/text/lower_case.h"
#include "text/wildcard_pattern.h"

using namespace quillmere;

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kMostBytes = 64;
constexpr std::size_t kFewUnits = 10;        ///< of a pattern with a text that fits into registers
constexpr std::size_t kMostSteps = 1 << 16;  ///< of the plain matcher

/// Few units, so that texts match: letters, among them those whose case is odd, wildcards, halves of characters, marks.
XCHAR UnitOf(std::uint8_t byte) {
  constexpr XCHAR kUnits[] = {'*',  '?',   'a',   'b',   'A',   'B',  '*',    '?',    'a',    'k',    'i',
                              'K',  0,     '.',   '~',   '@',   '`',  '[',    0xC9,   0xE9,   0x130,  0x131,
                              0xFF, 0x178, 0x416, 0x436, 0x1C5, 0x80, 0x1E9E, 0x212A, 0x3F2A, 0xD83D, 0xFFFF};
  return kUnits[byte % std::size(kUnits)];
}

XString UnitsOf(Bytes bytes) {
  XString units;
  std::ranges::transform(bytes, std::back_inserter(units), UnitOf);
  return units;
}

/// Some bytes make the units long.
XString Repeated(const XString& units, std::uint8_t byte) {
  XString all = units;
  for (; byte > 0xE0; --byte) all += units;
  return all;
}

/// A text that the pattern matches, with units of `filling` for what its wildcards stand for.
XString InstanceOf(const XString& pattern, const XString& filling) {
  XString text;
  std::size_t at = 0;
  const auto next = [&] { return filling.empty() ? XTEXT('a') : filling[at++ % filling.size()]; };
  for (const XCHAR unit : pattern) {
    if (unit != XTEXT('*'))
      text += unit == XTEXT('?') ? next() : unit;
    else
      for (XCHAR count = next() % 8; count != 0; --count) text += next();
  }
  return text;
}

/// Which beginnings of the text match, one unit of the pattern after the other.
bool PlainMatch(const XString& pattern, const XString& text, bool caseSensitive) {
  const auto isEqual = [=](XCHAR a, XCHAR b) { return caseSensitive ? a == b : LowerCase(a) == LowerCase(b); };
  std::vector<char> matched(text.size() + 1);
  matched[0] = 1;
  for (const XCHAR wanted : pattern) {
    std::vector<char> next(text.size() + 1);
    for (std::size_t at = 0; at <= text.size(); ++at) {
      if (wanted == XTEXT('*'))
        next[at] = matched[at] || (at > 0 && next[at - 1]);
      else
        next[at] = at > 0 && matched[at - 1] && (wanted == XTEXT('?') || isEqual(wanted, text[at - 1]));
    }
    matched = next;
  }
  return matched.back() != 0;
}

void Judge(const XString& pattern, const XString& text, bool caseSensitive) {
  const bool expected = PlainMatch(pattern, text, caseSensitive);
  const text::WildcardPattern matcher(pattern, caseSensitive);
  // In a block of its own, so that the sanitizer sees a read outside.
  std::vector<XCHAR> counted(text.size() + 1, static_cast<XCHAR>(text.size()));
  std::ranges::copy(text, counted.begin() + 1);
  if (matcher.Matches({counted.data() + 1, text.size()}) != expected) std::abort();
  XLOPER12 cell = BooleanCell(true);
  cell.val.str = counted.data();
  cell.xltype = xltypeStr;
  int kept = 0;
  const auto others = [](const XLOPER12&) { return false; };
  if (matcher.Keep(&cell, 1, text::EveryPlace{}, 1, &kept, others) != std::size_t{expected}) std::abort();
  if (text::HasWildcards(pattern) != (pattern.find_first_of(XTEXT("*?")) != XString::npos)) std::abort();
}

}  // namespace

// The first byte says how the others are read, by its bits.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kHead = 4;
  if (size < kHead) return 0;
  const Bytes units = Bytes(data, std::min(size, kMostBytes)).subspan(kHead);
  const std::size_t most = (data[0] & 8) != 0 ? std::min(units.size(), kFewUnits) : units.size();
  const std::size_t split = data[1] % (most + 1);
  XString pattern = Repeated(UnitsOf(units.first(split)), data[2]);
  if ((data[0] & 16) != 0) {  // one segment, long or short
    std::ranges::replace(pattern, XTEXT('*'), XTEXT('b'));
    pattern = XTEXT("*") + pattern + XTEXT("*");
  }
  const XString rest = UnitsOf(units.subspan(split));
  XString text = (data[0] & 2) != 0 ? InstanceOf(pattern, rest) : Repeated(rest, data[3]);
  // What nearly matches.
  if ((data[0] & 4) != 0 && !text.empty()) text.erase(data[3] % text.size(), 1);
  if (text.size() <= kXlMaxText && (pattern.size() + 1) * (text.size() + 1) <= kMostSteps)
    Judge(pattern, text, (data[0] & 1) != 0);
  return 0;
}
