// The one interface of all that texts are matched against.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/values/cell.h"
#include "text/prefetch_ahead.h"
#include "text/quick_reject.h"
#include "text/unit_pairs.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// The first places of a column, all of them.
struct EveryPlace {
  std::size_t operator[](std::size_t place) const noexcept { return place; }
};

/// A pattern made ready, once for a pattern and a call; one thread uses it, since it may keep what it learns of the
/// texts that it is matched against. Of many texts those that the quick reject tells cost no call.
class TextMatcher {
 public:
  TextMatcher(const TextMatcher&) = delete;
  TextMatcher& operator=(const TextMatcher&) = delete;
  virtual ~TextMatcher() = default;

  /// Whether a text matches. Texts are a cell's, 32,767 units at most.
  bool Matches(XStringView text) const { return reject_.Passes(text) && MatchesInFull(text); }

  /// What the UnitPairsOf every text have that matches. Whoever tests many texts against many patterns makes those of
  /// the texts once, and asks for a match only where none is lacking.
  UnitPairs RequiredPairs() const noexcept { return pairs_; }

  /// Tests `count` cells of a column, `stride` cells apart from `first` on: those at `places`, counted from 0, a
  /// pointer to numbers or EveryPlace. The places of the texts that match are written to `kept`, in their order, and so
  /// are those of the other cells for which `others(cell)` is true. `kept` has room for them all and may be `places`.
  /// Returns how many were kept.
  template <class Places, class Place, class Others>
  std::size_t Keep(const XLOPER12* first, std::ptrdiff_t stride, const Places& places, std::size_t count, Place* kept,
                   const Others& others) const {
    // Which texts are rejected is as good as random, so that no branch is taken on it; those that are left come after.
    const QuickReject reject = reject_;
    std::size_t left = 0;
    const auto keepUnlessRejected = [&](Place place) {
      const XLOPER12& cell = first[place * stride];
      kept[left] = place;
      left += !IsTextCell(cell) || reject.Passes(TextOf(cell));
    };
    std::size_t i = 0;
    for (; i + kTextsAhead < count; ++i) {
      if (i + kCellsAhead < count) PrefetchFarCell(&first[places[i + kCellsAhead] * stride]);
      PrefetchText(first[places[i + kTextsAhead] * stride]);
      keepUnlessRejected(static_cast<Place>(places[i]));
    }
    for (; i < count; ++i) keepUnlessRejected(static_cast<Place>(places[i]));

    std::size_t matched = 0;
    for (i = 0; i < left;) {
      XStringView texts[kTextsAtOnce];
      bool matches[kTextsAtOnce] = {};
      std::size_t textCount = 0;
      const std::size_t end = std::min(left, i + kTextsAtOnce);
      for (std::size_t at = i; at < end; ++at)
        if (const XLOPER12& cell = first[kept[at] * stride]; IsTextCell(cell)) texts[textCount++] = TextOf(cell);
      MatchInFull(texts, textCount, matches);
      for (const bool* match = matches; i < end; ++i) {
        const XLOPER12& cell = first[kept[i] * stride];
        if (IsTextCell(cell) ? *match++ : others(cell)) kept[matched++] = kept[i];
      }
    }
    return matched;
  }

 protected:
  TextMatcher() = default;

  static constexpr std::size_t kTextsAtOnce = 32;

  /// For the constructors of patterns of whose texts something is known beforehand.
  void RejectBy(const QuickReject& reject) noexcept { reject_ = reject; }
  void RequirePairs(UnitPairs pairs) noexcept { pairs_ = pairs; }

 private:
  /// Whether a text that was not rejected matches.
  virtual bool MatchesInFull(XStringView text) const = 0;
  /// The same of several texts, kTextsAtOnce at most.
  virtual void MatchInFull(const XStringView* texts, std::size_t count, bool* matches) const {
    for (std::size_t text = 0; text < count; ++text) matches[text] = MatchesInFull(texts[text]);
  }

  QuickReject reject_;
  UnitPairs pairs_ = 0;
};

}  // namespace quillmere::text
