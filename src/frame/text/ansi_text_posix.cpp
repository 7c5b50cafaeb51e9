#include <algorithm>
#include <array>

#include "frame/text/ansi_text.h"

namespace quillmere {
namespace {

/// Windows-1252 from 0x80 to 0x9F; all other bytes are the character of the same number. The five bytes without a
/// character map to themselves, as Windows does it.
constexpr std::array<char16_t, 32> kUpperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr unsigned kFirstMapped = 0x80;

bool IsMapped(unsigned code) { return code >= kFirstMapped && code < kFirstMapped + kUpperControls.size(); }

bool IsHighSurrogate(XCHAR unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(XCHAR unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

char NarrowUnit(XCHAR unit) {
  if (const auto* found = std::find(kUpperControls.begin(), kUpperControls.end(), unit); found != kUpperControls.end())
    return static_cast<char>(kFirstMapped + static_cast<unsigned>(found - kUpperControls.begin()));
  return unit > 0xFF || IsMapped(unit) ? '?' : static_cast<char>(unit);
}

}  // namespace

XString WidenAnsi(std::string_view text) {
  XString wide(text.size(), XCHAR{});
  std::transform(text.begin(), text.end(), wide.begin(), [](char byte) {
    const unsigned code = static_cast<unsigned char>(byte);
    return IsMapped(code) ? kUpperControls[code - kFirstMapped] : static_cast<XCHAR>(code);
  });
  return wide;
}

std::string NarrowToAnsi(XStringView text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    narrow.push_back(NarrowUnit(text[i]));
    if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) ++i;
  }
  return narrow;
}

}  // namespace quillmere
