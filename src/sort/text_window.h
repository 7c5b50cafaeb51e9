// Texts, or the bytes of keys made of them, sixteen bytes at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/text/fold_case.h"
#include "frame/text/text_block.h"
#include "frame/values/cell_copy.h"
#include "sort/raw_values.h"
#include "xlcall/xchar.h"

namespace quillmere::sort {

/// How many rows are asked what all texts may have in common.
constexpr std::int32_t kSampledRows = 32;

/// One to seven units in a register, in their order; zeros behind them. As all that reads the host's memory, these are
/// plain loads: no function of the C library is called on it.
inline __m128i LoadPadded(const XCHAR* units, std::size_t count) {
  const auto loadFour = [](const XCHAR* from) {
    return LowerWord(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
  };
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  if (count >= 4) {
    low = loadFour(units);
    if (count > 4) high = loadFour(units + count - 4) >> (kTextBlock - count) * 16;
  } else {
    low = units[0];
    if (count > 1) low |= std::uint64_t{units[1]} << 16;
    if (count > 2) low |= std::uint64_t{units[2]} << 32;
  }
  return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}

/// The units of a text from `at` on, as far as sixteen bytes go, ordered as bits; zeros stand behind its end.
inline WideBits UnitsAt(XStringView text, std::size_t at) {
  if (at >= text.size()) return {};
  const XCHAR* const units = text.data() + at;
  const std::size_t left = text.size() - at;
  __m128i block = left >= kTextBlock ? LoadBlock(units) : LoadPadded(units, left);
  // The first unit becomes the highest of its word.
  constexpr int kReversed = 0x1B;
  block = _mm_shufflehi_epi16(_mm_shufflelo_epi16(block, kReversed), kReversed);
  return {LowerWord(block), UpperWord(block)};
}
inline WideBits UnitsAt(std::string_view key, std::size_t at) {
  std::uint64_t words[2] = {};
  if (at < key.size()) std::memcpy(words, key.data() + at, std::min(key.size() - at, sizeof words));
  return {__builtin_bswap64(words[0]), __builtin_bswap64(words[1])};
}

/// The order by units: below 0, 0 or above.
inline int OrderOf(XStringView a, XStringView b) { return CompareExact(a, b); }
inline int OrderOf(std::string_view a, std::string_view b) { return a.compare(b); }

inline void Keep(XString& kept, XStringView text) { AssignText(kept, text); }
inline void Keep(std::string& kept, std::string_view key) { kept = key; }

/// What is looked at of the texts of a run, whose first units, as many as `depth` says, are equal: the units behind
/// those that a sample of them has in common.
template <class Unit>
class TextWindow {
  using View = std::basic_string_view<Unit>;
  static constexpr std::size_t kUnits = 16 / sizeof(Unit);

 public:
  explicit TextWindow(std::uint32_t depth) noexcept : depth_(depth) {}

  /// Takes a text into the sample.
  void Sample(View text) {
    const View rest = text.substr(std::min<std::size_t>(depth_, text.size()));
    if (hasSample_)
      shared_.resize(static_cast<std::size_t>(std::ranges::mismatch(shared_, rest).in1 - shared_.begin()));
    else
      Keep(shared_, rest);
    hasSample_ = true;
  }

  /// The kind and the bits of a text.
  ValueKind Place(View text, WideBits& bits) {
    longest_ = std::max(longest_, text.size());
    if (depth_ == kAllUnits) {
      bits = {text.size(), 0};
      return kTextWithin;
    }
    if (!shared_.empty()) {
      const View rest = text.substr(std::min<std::size_t>(depth_, text.size()), shared_.size());
      if (const int order = OrderOf(rest, shared_); order != 0) return order < 0 ? kTextBefore : kTextBehind;
    }
    bits = UnitsAt(text, depth_ + shared_.size());
    return kTextWithin;
  }

  /// Says what the bits of all texts together are.
  void Tell(ValueSurvey& survey) const {
    survey.isWholeTexts = depth_ == kAllUnits;
    if (survey.isWholeTexts) return;
    survey.depth = static_cast<std::uint32_t>(depth_ + shared_.size());
    survey.nextDepth =
        longest_ <= survey.depth + kUnits ? kAllUnits : survey.depth + static_cast<std::uint32_t>(kUnits);
  }

 private:
  std::uint32_t depth_;
  bool hasSample_ = false;
  std::basic_string<Unit> shared_;
  std::size_t longest_ = 0;
};

}  // namespace quillmere::sort
