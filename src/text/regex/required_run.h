// A few units one behind another that a text must have, looked for in registers.
#pragma once

#include <cstddef>

#include "frame/text/fold_case.h"
#include "frame/text/text_block.h"
#include "text/short_text.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// A run of units, which is empty at first: then every text has it.
class RequiredRun {
 public:
  RequiredRun() = default;
  /// The first of `units`. Where case is ignored they are ASCII units.
  RequiredRun(XStringView units, bool anyCase) noexcept : anyCase_(anyCase) {
    for (; count_ < kMostUnits && count_ < units.size(); ++count_)
      units_[count_] = anyCase ? FoldUnit(units[count_]) : units[count_];
  }

  /// False only for a text without the run. Where case is ignored it is told of texts of ASCII units alone: others may
  /// have letters whose other case is in ASCII.
  bool MayBeIn(XStringView text) const {
    if (count_ == 0) return true;
    if (!ShortText::Fits(text.size())) return text.size() < ShortText::kLeast || MayBeInLong(text);
    ShortText units(text);
    if (anyCase_ && !units.FoldAscii()) return true;
    unsigned places = ~0U;
    for (std::size_t at = 0; at < count_ && places != 0; ++at) places &= units.PlacesOf(units_[at]) >> at;
    return places != 0;
  }

 private:
  static constexpr std::size_t kMostUnits = 8;

  /// Looks for the first two units alone.
  bool MayBeInLong(XStringView text) const;

  std::size_t count_ = 0;
  bool anyCase_ = false;
  XCHAR units_[kMostUnits];
};

}  // namespace quillmere::text
