// The units that part a text, each on its own.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/text/text_block.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// A set of units, in which nothing is at first. A few are looked for in blocks of a text, more by a table of all
/// units.
class DelimiterSet {
 public:
  /// How many units are looked at together.
  static constexpr std::size_t kUnitsAtOnce = 64;

  void Add(XStringView units) {
    for (const XCHAR unit : units) {
      if (Has(unit)) continue;
      isIn_[unit / kUnitsAtOnce] |= std::uint64_t{1} << unit % kUnitsAtOnce;
      if (count_ < kFew) few_[count_] = _mm_set1_epi16(static_cast<short>(unit));
      ++count_;
    }
  }

  /// Which of `count` units, at most kUnitsAtOnce, are in the set: a bit for each, the lowest for the first.
  std::uint64_t PlacesIn(const XCHAR* units, std::size_t count) const {
    std::uint64_t places = 0;
    if (count_ > kFew || count < kTextBlock / 2) {
      for (std::size_t at = 0; at < count; ++at) places |= std::uint64_t{Has(units[at])} << at;
    } else if (count < kTextBlock) {
      constexpr std::uint64_t kFirstPlaces = (1U << kTextBlock / 2) - 1;
      const std::uint64_t ends = PlacesIn(LoadEnds<kTextBlock / 2>(units, count));
      places = (ends & kFirstPlaces) | ends >> kTextBlock / 2 << (count - kTextBlock / 2);
    } else {
      for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
        places |= PlacesIn(LoadBlock(units + at)) << at;
      const std::size_t last = count - kTextBlock;
      places |= PlacesIn(LoadBlock(units + last)) << last;
    }
    return places;
  }

 private:
  static constexpr std::size_t kFew = 8;
  static constexpr std::size_t kAllUnits = 0x10000;

  bool Has(XCHAR unit) const { return (isIn_[unit / kUnitsAtOnce] >> unit % kUnitsAtOnce & 1) != 0; }

  std::uint64_t PlacesIn(__m128i block) const {
    __m128i found = _mm_setzero_si128();
    for (std::size_t at = 0; at < count_; ++at) found = _mm_or_si128(found, _mm_cmpeq_epi16(block, few_[at]));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(found, _mm_setzero_si128())));
  }

  std::size_t count_ = 0;
  __m128i few_[kFew];  ///< the first of them, each in all places of a block
  std::uint64_t isIn_[kAllUnits / kUnitsAtOnce] = {};
};

}  // namespace quillmere::text
