#include "text/segment_search.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "frame/text/text_block.h"
#include "xlcall/xlcall.h"

namespace quillmere::text {
namespace {

constexpr std::size_t kWordBits = 64;
constexpr std::size_t kMostWords = kXlMaxText / kWordBits + 1;
constexpr std::size_t kShortUnits = 64;  ///< the longest segment that is tried place by place

/// At which of the first eight places of a text the segment matches: two bits for each.
unsigned MatchesInBlock(const XCHAR* text, const XString& segment) {
  unsigned matches = 0xFFFF;
  for (const XCHAR wanted : segment) {
    const XCHAR* const units = text++;
    if (wanted == kAnyUnit) continue;
    const __m128i equal = _mm_cmpeq_epi16(LoadBlock(units), _mm_set1_epi16(static_cast<short>(wanted)));
    matches &= static_cast<unsigned>(_mm_movemask_epi8(equal));
    if (matches == 0) break;
  }
  return matches;
}

/// Sets the bits of the places of a rare unit: of those behind a beginning that matched before it.
void SetRare(const std::vector<std::uint16_t>& places, const std::uint64_t* before, std::uint64_t* after,
             std::size_t reached) {
  for (const std::size_t place : places) {
    if (place / kWordBits >= reached) break;
    const std::size_t previous = place - 1;
    const bool matches = place == 0 || (before[previous / kWordBits] >> previous % kWordBits & 1) != 0;
    after[place / kWordBits] |= std::uint64_t{matches} << place % kWordBits;
  }
}

}  // namespace

SegmentSearch::SegmentSearch(XString units) : units_(std::move(units)) {
  if (units_.size() > kShortUnits) PrepareRows();
}

void SegmentSearch::PrepareRows() {
  words_ = (units_.size() + kWordBits - 1) / kWordBits;
  std::unordered_map<XCHAR, std::size_t> counts;
  for (const XCHAR unit : units_) ++counts[unit];
  const auto setBit = [this](std::size_t row, std::size_t place) {
    rows_[row + place / kWordBits] |= Word{1} << place % kWordBits;
  };

  rows_.resize(words_);
  for (std::size_t place = 0; place < units_.size(); ++place)
    if (units_[place] == kAnyUnit) setBit(0, place);
  for (std::size_t place = 0; place < units_.size(); ++place) {
    const XCHAR unit = units_[place];
    if (unit == kAnyUnit) continue;
    Places& places = places_[unit];
    // A row costs as much as a list of that length, and there can be no more such rows than a word has bits.
    if (counts[unit] <= words_) {
      places.rare.push_back(static_cast<std::uint16_t>(place));
      continue;
    }
    if (places.row == 0) {
      places.row = rows_.size();
      rows_.resize(rows_.size() + words_);
      std::copy_n(rows_.begin(), words_, rows_.end() - words_);
    }
    setBit(places.row, place);
  }
}

std::size_t SegmentSearch::FindIn(XStringView text) const {
  if (text.size() < units_.size()) return XStringView::npos;
  return words_ == 0 ? FindShort(text) : FindLong(text);
}

std::size_t SegmentSearch::FindShort(XStringView text) const {
  const std::size_t places = text.size() - units_.size() + 1;
  for (std::size_t at = 0; at < places; at += kTextBlock) {
    const unsigned matches = MatchesInBlock(text.data() + at, units_);
    if (matches == 0) continue;
    const std::size_t place = at + static_cast<std::size_t>(std::countr_zero(matches)) / sizeof(XCHAR);
    return place < places ? place : XStringView::npos;
  }
  return XStringView::npos;
}

std::size_t SegmentSearch::FindLong(XStringView text) const {
  // A bit stands for a beginning of the segment that ends there and matches up to the current unit. `used` words may
  // have bits; one more is kept zero behind them.
  Word states[2][kMostWords + 1];
  Word* before = states[0];
  Word* after = states[1];
  before[0] = 0;
  std::size_t used = 0;
  const std::size_t last = units_.size() - 1;

  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto found = places_.find(text[at]);
    const Places* const places = found == places_.end() ? nullptr : &found->second;
    const Word* const row = rows_.data() + (places == nullptr ? 0 : places->row);
    const std::size_t reached = std::min(used + 1, words_);
    Word carried = 1;  // the empty beginning always matches
    for (std::size_t word = 0; word < reached; ++word) {
      after[word] = (before[word] << 1 | carried) & row[word];
      carried = before[word] >> (kWordBits - 1);
    }
    if (places != nullptr) SetRare(places->rare, before, after, reached);
    after[reached] = 0;
    used = reached;
    while (used > 0 && after[used - 1] == 0) --used;
    if (used == words_ && (after[words_ - 1] >> last % kWordBits & 1) != 0) return at - last;
    std::swap(before, after);
  }
  return XStringView::npos;
}

}  // namespace quillmere::text
