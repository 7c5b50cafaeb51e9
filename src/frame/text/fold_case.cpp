#include "frame/text/fold_case.h"

#include <algorithm>
#include <bit>
#include <cstddef>

#include "frame/text/text_block.h"

namespace quillmere {
namespace {

template <bool folded>
inline XCHAR Unit(XCHAR unit) {
  return folded ? FoldUnit(unit) : unit;
}

/// The first lane in which two vectors differ; `none` if they are equal.
template <bool folded>
inline std::size_t DifferentLane(__m128i a, __m128i b, std::size_t none) {
  if constexpr (folded) {
    a = FoldBlock(a);
    b = FoldBlock(b);
  }
  const unsigned equalBytes = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(a, b)));
  return equalBytes == 0xFFFF ? none : static_cast<std::size_t>(std::countr_one(equalBytes)) / sizeof(XCHAR);
}

/// The place of the first difference within ends loaded by LoadEnds<kUnits>.
template <bool folded, std::size_t kUnits>
inline std::size_t DifferenceInEnds(const XCHAR* a, const XCHAR* b, std::size_t count) {
  constexpr std::size_t kNone = kTextBlock;
  const std::size_t lane = DifferentLane<folded>(LoadEnds<kUnits>(a, count), LoadEnds<kUnits>(b, count), kNone);
  if (lane == kNone) return count;
  return lane < kUnits ? lane : count - 2 * kUnits + lane;
}

/// The first place, of `count`, at which two texts differ; `count` if they do not.
template <bool folded>
inline std::size_t FirstDifference(const XCHAR* a, const XCHAR* b, std::size_t count) {
  constexpr std::size_t kNone = kTextBlock;
  if (count >= kTextBlock) {
    const std::size_t lastBlock = count - kTextBlock;
    for (std::size_t at = 0; at < lastBlock; at += kTextBlock) {
      const std::size_t lane = DifferentLane<folded>(LoadBlock(a + at), LoadBlock(b + at), kNone);
      if (lane != kNone) return at + lane;
    }
    return lastBlock + DifferentLane<folded>(LoadBlock(a + lastBlock), LoadBlock(b + lastBlock), kNone);
  }
  if (count >= 4) return DifferenceInEnds<folded, 4>(a, b, count);
  if (count >= 2) return DifferenceInEnds<folded, 2>(a, b, count);
  return count == 0 || Unit<folded>(*a) == Unit<folded>(*b) ? count : 0;
}

template <bool folded>
inline bool Equal(XStringView a, XStringView b) {
  if (a.size() != b.size()) return false;
  if (a.size() > kTextBlock && a.size() <= kFewBlocks * kTextBlock) {
    const FewBlocks blocksOfA(a.data(), a.size());
    const FewBlocks blocksOfB(b.data(), b.size());
    return folded ? EqualBlocks(FoldBlocks(blocksOfA), FoldBlocks(blocksOfB)) : EqualBlocks(blocksOfA, blocksOfB);
  }
  return FirstDifference<folded>(a.data(), b.data(), a.size()) == a.size();
}

template <bool folded>
inline int Compare(XStringView a, XStringView b) {
  const std::size_t shared = std::min(a.size(), b.size());
  const std::size_t at = FirstDifference<folded>(a.data(), b.data(), shared);
  if (at == shared) return a.size() < b.size() ? -1 : a.size() > b.size();
  return Unit<folded>(a[at]) < Unit<folded>(b[at]) ? -1 : 1;
}

}  // namespace

void FoldCase(XString& text) { FoldTo(text.data(), text); }

void FoldTo(XCHAR* to, XStringView text) {
  const XCHAR* const from = text.data();
  const std::size_t count = text.size();
  if (count >= kTextBlock) {
    // The last block may fold units a second time, which changes nothing.
    const std::size_t lastBlock = count - kTextBlock;
    for (std::size_t at = 0; at < lastBlock; at += kTextBlock) StoreBlock(to + at, FoldBlock(LoadBlock(from + at)));
    StoreBlock(to + lastBlock, FoldBlock(LoadBlock(from + lastBlock)));
  } else if (count >= 4) {
    const __m128i ends = FoldBlock(LoadEnds<4>(from, count));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), ends);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + count - 4), _mm_unpackhi_epi64(ends, ends));
  } else {
    for (std::size_t at = 0; at < count; ++at) to[at] = FoldUnit(from[at]);
  }
}

bool EqualFolded(XStringView a, XStringView b) { return Equal<true>(a, b); }
bool EqualExact(XStringView a, XStringView b) { return Equal<false>(a, b); }
int CompareFolded(XStringView a, XStringView b) { return Compare<true>(a, b); }
int CompareExact(XStringView a, XStringView b) { return Compare<false>(a, b); }

}  // namespace quillmere
