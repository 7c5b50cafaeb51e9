#include "text/wildcard_pattern.h"

#include <algorithm>
#include <bit>

#include "frame/errors/exceptions.h"
#include "frame/text/lower_case.h"
#include "frame/text/text_block.h"
#include "frame/values/cell_copy.h"
#include "xlcall/xlcall.h"

namespace quillmere::text {
namespace {

constexpr XCHAR kStar = XTEXT('*');

/// Whether as many units as a part of a pattern has, at `text`, match it.
template <bool caseSensitive>
inline bool MatchesPart(const XCHAR* text, const XString& part) {
  for (const XCHAR wanted : part) {
    const XCHAR unit = *text++;
    if (wanted != kAnyUnit && wanted != (caseSensitive ? unit : LowerCase(unit))) return false;
  }
  return true;
}

/// Adds to a reject how texts begin and end. Whether it then tells all of that.
bool RequireEnds(QuickReject& reject, XStringView prefix, XStringView suffix, bool caseSensitive) {
  bool isAll = true;
  for (std::size_t at = 0; at < prefix.size(); ++at)
    if (prefix[at] != kAnyUnit) isAll &= reject.Require(static_cast<std::ptrdiff_t>(at), prefix[at], caseSensitive);
  for (std::size_t back = 1; back <= suffix.size(); ++back)
    if (const XCHAR unit = suffix[suffix.size() - back]; unit != kAnyUnit)
      isAll &= reject.Require(-static_cast<std::ptrdiff_t>(back), unit, caseSensitive);
  return isAll;
}

}  // namespace

bool HasWildcards(XStringView text) {
  const auto hasAny = [](__m128i units) {
    const __m128i found =
        _mm_or_si128(_mm_cmpeq_epi16(units, _mm_set1_epi16(kStar)), _mm_cmpeq_epi16(units, _mm_set1_epi16(kAnyUnit)));
    return _mm_movemask_epi8(found) != 0;
  };
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  if (count < kTextBlock)
    return std::any_of(text.begin(), text.end(), [](XCHAR unit) { return unit == kStar || unit == kAnyUnit; });
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
    if (hasAny(LoadBlock(units + at))) return true;
  return hasAny(LoadBlock(units + count - kTextBlock));
}

WildcardPattern::WildcardPattern(XStringView pattern, bool caseSensitive)
    : caseSensitive_(caseSensitive), prefix_(pattern.size(), XCHAR{}) {
  std::transform(pattern.begin(), pattern.end(), prefix_.begin(),
                 [caseSensitive](XCHAR unit) { return caseSensitive ? unit : LowerCase(unit); });
  const std::size_t least = prefix_.size() - std::count(prefix_.begin(), prefix_.end(), kStar);
  const std::size_t firstStar = prefix_.find(kStar);
  if (firstStar == XString::npos) {
    QuickReject reject(least, least);
    endsAreTold_ = RequireEnds(reject, prefix_, prefix_, caseSensitive);
    RejectBy(reject);
    return;
  }
  std::size_t star = firstStar;
  for (std::size_t next = 0; (next = prefix_.find(kStar, star + 1)) != XString::npos; star = next)
    if (next > star + 1) middle_.emplace_back(prefix_.substr(star + 1, next - star - 1));
  suffix_ = prefix_.substr(star + 1);
  prefix_.resize(firstStar);
  QuickReject reject(least, XStringView::npos);
  endsAreTold_ = RequireEnds(reject, prefix_, suffix_, caseSensitive);
  RejectBy(reject);
}

bool WildcardPattern::MatchesInFull(XStringView text) const {
  if (text.size() > kXlMaxText) [[unlikely]]
    ThrowStringTooLong();
  return caseSensitive_ ? MatchesCased<true>(text) : MatchesCased<false>(text);
}

template <bool caseSensitive>
inline bool WildcardPattern::MatchesCased(XStringView text) const {
  if (endsAreTold_ && ShortText::Fits(text.size())) {
    if (middle_.empty()) return true;
    ShortText units(text);
    if (caseSensitive || units.FoldAscii()) return MatchesMiddle(units, text.size());
  }
  if (!MatchesPart<caseSensitive>(text.data(), prefix_)) return false;
  if (!MatchesPart<caseSensitive>(text.data() + text.size() - suffix_.size(), suffix_)) return false;
  if (middle_.empty()) return true;
  const XStringView middle(text.data() + prefix_.size(), text.size() - prefix_.size() - suffix_.size());
  constexpr std::size_t kShort = 256;
  return middle.size() <= kShort ? MatchesMiddle<kShort>(middle) : MatchesMiddle<kXlMaxText>(middle);
}

bool WildcardPattern::MatchesMiddle(const ShortText& text, std::size_t size) const {
  std::size_t begin = prefix_.size();
  const std::size_t end = size - suffix_.size();
  for (const SegmentSearch& segment : middle_) {
    if (begin + segment.Units() > end) return false;
    const unsigned all = (2U << (end - segment.Units())) - (1U << begin);
    const unsigned places = segment.PlacesIn(text) & all;
    if (places == 0) return false;
    begin = static_cast<std::size_t>(std::countr_zero(places)) + segment.Units();
  }
  return true;
}

/// Out of line, so that a short text does not pay for the room of a long one.
template <std::size_t kRoom>
__attribute__((noinline)) bool WildcardPattern::MatchesMiddle(XStringView middle) const {
  XCHAR counted[1 + kRoom + kTextBlock];
  XCHAR* const units = counted + 1;
  if (caseSensitive_)
    CopyText(counted, middle.data(), middle.size());
  else
    LowerTo(units, middle);
  StoreBlock(units + middle.size(), _mm_setzero_si128());
  middle = {units, middle.size()};
  // Each segment where it first matches leaves the most to those behind it, so that no choice is ever taken back.
  for (const SegmentSearch& segment : middle_) {
    const std::size_t at = segment.FindIn(middle);
    if (at == XStringView::npos) return false;
    middle.remove_prefix(at + segment.Units());
  }
  return true;
}

}  // namespace quillmere::text
