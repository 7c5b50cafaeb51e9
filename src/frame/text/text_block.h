// Texts in registers, eight UTF-16 units at a time. No unit outside a text is ever read.
//
// The loads are plain reads to the compiler, so that a fault in one of them unwinds wherever they are inlined.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "xlcall/xchar.h"

namespace quillmere {

constexpr std::size_t kTextBlock = 8;  ///< units of one register

inline __m128i LoadBlock(const XCHAR* units) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units)); }
inline std::uint64_t LowerWord(__m128i block) { return static_cast<std::uint64_t>(_mm_cvtsi128_si64(block)); }
inline std::uint64_t UpperWord(__m128i block) { return LowerWord(_mm_unpackhi_epi64(block, block)); }
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

/// A text of fewer units than a block, in a register that each such text fills in its own way, its length given.
inline __m128i LoadShort(const XCHAR* text, std::size_t units) {
  if (units >= 4) return LoadEnds<4>(text, units);
  if (units >= 2) return LoadEnds<2>(text, units);
  return _mm_cvtsi32_si128(units == 0 ? 0 : *text);
}

/// Texts of more than one block and of no more than so many are looked at in the same way, whatever their length: a
/// processor cannot foresee how long the next one is.
constexpr std::size_t kFewBlocks = 4;

/// The blocks of a text of few, in whole all of it; they may overlap, and those of a text of one block are the same.
struct FewBlocks {
  FewBlocks(const XCHAR* units, std::size_t count) {
    if (count <= kTextBlock) {
      first = second = third = last = count < kTextBlock ? LoadShort(units, count) : LoadBlock(units);
      return;
    }
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
inline FewBlocks FoldBlocks(FewBlocks blocks) {
  blocks.first = FoldBlock(blocks.first);
  blocks.second = FoldBlock(blocks.second);
  blocks.third = FoldBlock(blocks.third);
  blocks.last = FoldBlock(blocks.last);
  return blocks;
}

/// Whether two texts of few blocks and of equal length are equal.
inline bool EqualBlocks(const FewBlocks& a, const FewBlocks& b) {
  const __m128i equalFirst = _mm_and_si128(_mm_cmpeq_epi16(a.first, b.first), _mm_cmpeq_epi16(a.second, b.second));
  const __m128i equalLast = _mm_and_si128(_mm_cmpeq_epi16(a.third, b.third), _mm_cmpeq_epi16(a.last, b.last));
  return _mm_movemask_epi8(_mm_and_si128(equalFirst, equalLast)) == 0xFFFF;
}

}  // namespace quillmere
