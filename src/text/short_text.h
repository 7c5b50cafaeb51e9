// Finding units in a short text that is held in registers, all its places at a time.
#pragma once

#include <cstddef>

#include "frame/text/text_block.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// The units of a text of kLeast to kMost units. Places are bits: the lowest is the first unit of the text.
class ShortText {
 public:
  static constexpr std::size_t kLeast = 4;
  static constexpr std::size_t kMost = 2 * kTextBlock;

  static bool Fits(std::size_t units) noexcept { return units - kLeast <= kMost - kLeast; }

  explicit ShortText(XStringView text) {
    const XCHAR* const end = text.data() + text.size();
    if (text.size() >= kTextBlock) {
      first_ = LoadBlock(text.data());
      last_ = LoadBlock(end - kTextBlock);
      shift_ = text.size() - kTextBlock;
    } else {
      first_ = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text.data()));
      last_ = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(end - kLeast));
      firstPlaces_ = (1U << kLeast) - 1;
      shift_ = text.size() - kLeast;
    }
  }

  /// Folds the letters A to Z. False when the text has units beyond ASCII: those stay as they are.
  bool FoldAscii() {
    const __m128i beyond = _mm_srli_epi16(_mm_or_si128(first_, last_), 7);
    first_ = FoldBlock(first_);
    last_ = FoldBlock(last_);
    return _mm_movemask_epi8(_mm_cmpeq_epi16(beyond, _mm_setzero_si128())) == 0xFFFF;
  }

  /// The places of the text where `unit` stands. Bits beyond its last unit may be anything.
  unsigned PlacesOf(XCHAR unit) const {
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
    const __m128i equal = _mm_packs_epi16(_mm_cmpeq_epi16(first_, wanted), _mm_cmpeq_epi16(last_, wanted));
    const auto bits = static_cast<unsigned>(_mm_movemask_epi8(equal));
    return (bits & firstPlaces_) | bits >> kTextBlock << shift_;
  }

 private:
  // The two ends of the text, which may overlap.
  __m128i first_;
  __m128i last_;
  unsigned firstPlaces_ = (1U << kTextBlock) - 1;
  std::size_t shift_;
};

}  // namespace quillmere::text
