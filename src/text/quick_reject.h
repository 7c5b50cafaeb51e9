// The cheap test that a text goes through before a pattern is tried on it.
#pragma once

#include <cstddef>

#include "frame/text/fold_case.h"
#include "frame/text/text_block.h"
#include "text/plain_text.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// What all texts that match a pattern have in common: their lengths, and units at their ends. Most texts that do not
/// match are told by that in a few instructions.
class QuickReject {
 public:
  /// Lets every text pass.
  QuickReject() = default;
  /// Lets texts of `least` to `most` units pass.
  QuickReject(std::size_t least, std::size_t most) noexcept : least_(least), span_(most - least) {}

  /// From now on plain texts alone (text/plain_text.h) are told by their ends: in others the units that are required
  /// may stand elsewhere, or in another form.
  void TellPlainTextsAlone() noexcept { tellsPlainAlone_ = true; }

  /// From now on texts have that unit at `place`: 0 is the first unit of a text, -1 the last. Nothing is tested beyond
  /// four units from an end, and, where case does not count, no unit beyond ASCII, since more than one other may be its
  /// counterpart. Whether texts of four units and more are told by it.
  bool Require(std::ptrdiff_t place, XCHAR unit, bool caseSensitive) noexcept {
    constexpr auto kEnd = static_cast<std::ptrdiff_t>(kEndUnits);
    if (place < -kEnd || place >= kEnd || (!caseSensitive && unit >= 0x80)) return false;
    const std::size_t at = place < 0 ? kTextBlock - static_cast<std::size_t>(-place) : static_cast<std::size_t>(place);
    const XCHAR folded = FoldUnit(unit);
    const bool hasCase = folded >= XTEXT('a') && folded <= XTEXT('z');
    mask_[at] = static_cast<XCHAR>(hasCase && !caseSensitive ? ~0x20 : ~0);  // the bit that tells the two cases apart
    wanted_[at] = static_cast<XCHAR>(unit & mask_[at]);
    return true;
  }

  /// False only for a text that does not match. Texts of less than four units are told by their length alone.
  bool Passes(XStringView text) const {
    if (text.size() - least_ > span_) return false;
    if (text.size() < kEndUnits) return true;
    const __m128i ends = _mm_and_si128(LoadEnds<kEndUnits>(text.data(), text.size()), LoadBlock(mask_));
    const bool hasEnds = _mm_movemask_epi8(_mm_cmpeq_epi16(ends, LoadBlock(wanted_))) == 0xFFFF;
    if (tellsPlainAlone_) return hasEnds || !IsPlainText(text);
    return hasEnds;  // no branch is taken on it: it is as good as random
  }

 private:
  static constexpr std::size_t kEndUnits = kTextBlock / 2;

  bool tellsPlainAlone_ = false;
  std::size_t least_ = 0;
  std::size_t span_ = XStringView::npos;
  XCHAR mask_[kTextBlock] = {};    ///< of the first units, then of the last: the bits that are tested
  XCHAR wanted_[kTextBlock] = {};  ///< what they are
};

}  // namespace quillmere::text
