#include "text/regex/required_run.h"

#include <algorithm>

namespace quillmere::text {

bool RequiredRun::MayBeInLong(XStringView text) const {
  const std::size_t second = count_ > 1 ? 1 : 0;
  const __m128i wantedFirst = _mm_set1_epi16(static_cast<short>(units_[0]));
  const __m128i wantedSecond = _mm_set1_epi16(static_cast<short>(units_[second]));
  const std::size_t lastAt = text.size() - second - kTextBlock;
  __m128i all = _mm_setzero_si128();
  for (std::size_t next = 0;; next += kTextBlock) {
    const std::size_t at = std::min(next, lastAt);
    __m128i firsts = LoadBlock(text.data() + at);
    __m128i seconds = LoadBlock(text.data() + at + second);
    all = _mm_or_si128(all, _mm_or_si128(firsts, seconds));
    if (anyCase_) {
      firsts = FoldBlock(firsts);
      seconds = FoldBlock(seconds);
    }
    const __m128i found = _mm_and_si128(_mm_cmpeq_epi16(firsts, wantedFirst), _mm_cmpeq_epi16(seconds, wantedSecond));
    if (_mm_movemask_epi8(found) != 0) return true;
    if (at == lastAt) break;
  }
  const __m128i beyondAscii = _mm_srli_epi16(all, 7);
  return anyCase_ && _mm_movemask_epi8(_mm_cmpeq_epi16(beyondAscii, _mm_setzero_si128())) != 0xFFFF;
}

}  // namespace quillmere::text
