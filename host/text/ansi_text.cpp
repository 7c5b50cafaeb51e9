#include "host/text/ansi_text.h"

#include <algorithm>
#include <iterator>

namespace qcalc {
namespace {

// Bytes 0x80 to 0x9F; all others stand for the unit of the same number. The five unused ones keep theirs, as on
// Windows.
constexpr char16_t kHighControls[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                      0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::string ToAnsi(XStringView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const XCHAR unit : text) {
    const auto code = static_cast<char16_t>(unit);
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
      bytes.push_back(static_cast<char>(code));
      continue;
    }
    const auto* found = std::find(std::begin(kHighControls), std::end(kHighControls), code);
    bytes.push_back(found == std::end(kHighControls) ? '?' : static_cast<char>(0x80 + (found - kHighControls)));
  }
  return bytes;
}

XString FromAnsi(std::string_view bytes) {
  XString text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text.push_back(static_cast<XCHAR>(code >= 0x80 && code < 0xA0 ? kHighControls[code - 0x80] : code));
  }
  return text;
}

}  // namespace qcalc
