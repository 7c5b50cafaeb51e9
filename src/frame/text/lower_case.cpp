#include "frame/text/lower_case.h"

#include <algorithm>

#include "frame/text/case_ranges.h"
#include "frame/text/text_block.h"

namespace quillmere {
namespace {

constexpr CaseRange kToLower[] = {
#include "frame/text/lower_case_ranges.inc"
};

bool IsAscii(__m128i block) {
  const __m128i beyond = _mm_srli_epi16(block, 7);
  return _mm_movemask_epi8(_mm_cmpeq_epi16(beyond, _mm_setzero_si128())) == 0xFFFF;
}

}  // namespace

XCHAR LowerCaseByTable(XCHAR unit) noexcept { return MapByRange(kToLower, unit); }

void LowerTo(XCHAR* to, XStringView text) {
  FoldTo(to, text);
  // What is left are the units beyond ASCII, which most texts have none of.
  XCHAR* const end = to + text.size();
  while (to != end) {
    XCHAR* const next = to + std::min<std::ptrdiff_t>(end - to, kTextBlock);
    if (next - to < static_cast<std::ptrdiff_t>(kTextBlock) || !IsAscii(LoadBlock(to)))
      std::transform(to, next, to, LowerCase);
    to = next;
  }
}

}  // namespace quillmere
