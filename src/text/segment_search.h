// Finding one segment of a wildcard pattern, the units between two stars, in a text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "text/short_text.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// The unit of a segment that any unit matches.
constexpr XCHAR kAnyUnit = XTEXT('?');

/// A segment made ready for being searched. Short ones are tried at eight places of the text at a time. Long ones keep
/// a bit for each of their beginnings that matches up to the current unit of the text, 64 to a step, so that texts full
/// of near matches stay cheap.
class SegmentSearch {
 public:
  /// `units` is not empty.
  explicit SegmentSearch(XString units);

  std::size_t Units() const noexcept { return units_.size(); }

  /// The places of a short text where the segment matches, wherever the text ends.
  unsigned PlacesIn(const ShortText& text) const {
    unsigned places = ~0U;
    unsigned at = 0;
    for (const XCHAR unit : units_) {
      if (unit != kAnyUnit) places &= text.PlacesOf(unit) >> at;
      ++at;
    }
    return places;
  }

  /// The first place where the segment matches, unit by unit as they are; npos when there is none. `text` has no more
  /// units than a cell's text, and kTextBlock more behind it may be read.
  std::size_t FindIn(XStringView text) const;

 private:
  using Word = std::uint64_t;

  /// Where a unit stands in a long segment: as a row of bits, or as a list where it is rare. Any-unit places stand in
  /// the rows of all units, and are not listed.
  struct Places {
    std::size_t row = 0;  ///< index of the row's first word; the row of the any-unit places for a rare unit
    std::vector<std::uint16_t> rare;
  };

  void PrepareRows();
  std::size_t FindShort(XStringView text) const;
  std::size_t FindLong(XStringView text) const;

  XString units_;
  std::size_t words_ = 0;   ///< of a row; 0 for a short segment
  std::vector<Word> rows_;  ///< the first is that of the any-unit places
  std::unordered_map<XCHAR, Places> places_;
};

}  // namespace quillmere::text
