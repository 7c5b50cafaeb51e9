// Texts in registers, eight UTF-16 units at a time. No unit outside a text is ever read.
//
// The loads are plain reads to the compiler, so that a fault in one of them unwinds wherever they are inlined.
#pragma once

#include <emmintrin.h>

#include <cstddef>

#include "xlcall/xchar.h"

namespace quillmere {

constexpr std::size_t kTextBlock = 8;  ///< units of one register

inline __m128i LoadBlock(const XCHAR* units) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units)); }
inline void StoreBlock(XCHAR* to, __m128i units) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), units); }

/// The first and the last `kUnits` (2 or 4) of `count` units, which may overlap, side by side in one register.
template <std::size_t kUnits>
inline __m128i LoadEnds(const XCHAR* units, std::size_t count) {
  const XCHAR* const last = units + count - kUnits;
  if constexpr (kUnits == 4)
    return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(units)),
                              _mm_loadl_epi64(reinterpret_cast<const __m128i*>(last)));
  else
    return _mm_unpacklo_epi32(_mm_loadu_si32(units), _mm_loadu_si32(last));
}

/// Texts of more than one block and of no more than so many are looked at in the same way, whatever their length: a
/// processor cannot foresee how long the next one is.
constexpr std::size_t kFewBlocks = 4;

/// The blocks of such a text, which together are all of it and may overlap.
struct FewBlocks {
  FewBlocks(const XCHAR* units, std::size_t count) {
    const std::size_t lastAt = count - kTextBlock;
    const std::size_t secondAt = lastAt < kTextBlock ? lastAt : kTextBlock;
    first = LoadBlock(units);
    second = LoadBlock(units + secondAt);
    third = LoadBlock(units + (lastAt - secondAt));
    last = LoadBlock(units + lastAt);
  }

  __m128i first;
  __m128i second;
  __m128i third;
  __m128i last;
};

/// The units folded by FoldCase's rule: A to Z alone.
inline __m128i FoldBlock(__m128i units) {
  // SSE2 compares signed: the letters are moved to the lowest numbers.
  const __m128i moved = _mm_add_epi16(units, _mm_set1_epi16(0x8000 - 'A'));
  const __m128i isLetter = _mm_cmplt_epi16(moved, _mm_set1_epi16(-0x8000 + 26));
  return _mm_or_si128(units, _mm_and_si128(isLetter, _mm_set1_epi16(0x20)));
}

}  // namespace quillmere
