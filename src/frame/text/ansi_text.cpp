#include "frame/text/ansi_text.h"

#include <algorithm>

#include "frame/text/text_cut.h"

namespace quillmere {

std::string NarrowToAnsi(XStringView text, std::size_t limit) {
  // A unit takes three bytes at most, in UTF-8; two units that are one character take one byte at least.
  constexpr std::size_t kMostBytes = 3;
  std::size_t units = std::min(text.size(), limit * 2);
  for (;;) {
    std::string narrow = NarrowToAnsi(CutText(text, units));
    if (narrow.size() <= limit) return narrow;
    units -= (narrow.size() - limit + kMostBytes - 1) / kMostBytes;
  }
}

}  // namespace quillmere
