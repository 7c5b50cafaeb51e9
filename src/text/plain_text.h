// Texts in which there is no more than meets the eye.
#pragma once

#include <cstddef>

#include "frame/text/text_block.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

inline constexpr XCHAR kFirstPlainUnit = 0x20;
inline constexpr XCHAR kLastPlainUnit = 0x7E;

/// Printable ASCII: no line break, and no letter whose other case may be in ASCII while it is not.
constexpr bool IsPlainUnit(XCHAR unit) noexcept { return unit >= kFirstPlainUnit && unit <= kLastPlainUnit; }

inline bool ArePlainUnits(__m128i units) {
  // SSE2 compares signed: plain units are moved to the lowest numbers.
  const __m128i moved = _mm_add_epi16(units, _mm_set1_epi16(static_cast<short>(0x8000 - kFirstPlainUnit)));
  const __m128i plain = _mm_cmplt_epi16(moved, _mm_set1_epi16(-0x8000 + (kLastPlainUnit + 1 - kFirstPlainUnit)));
  return _mm_movemask_epi8(plain) == 0xFFFF;
}

/// Whether a text of four units and more has plain ones alone.
inline bool IsPlainText(XStringView text) {
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  if (count < kTextBlock) return ArePlainUnits(LoadEnds<kTextBlock / 2>(units, count));
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
    if (!ArePlainUnits(LoadBlock(units + at))) return false;
  return ArePlainUnits(LoadBlock(units + count - kTextBlock));
}

}  // namespace quillmere::text
