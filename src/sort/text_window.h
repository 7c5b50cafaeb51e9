// Texts, or the bytes of keys made of them, sixteen bytes at a time.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/text/text_block.h"
#include "sort/raw_values.h"
#include "xlcall/xchar.h"

namespace quillmere::sort {

/// How many rows are asked what all texts may have in common.
constexpr std::int32_t kSampledRows = 32;

/// The units of a text from `at` on, as far as sixteen bytes go, ordered as bits; zeros stand behind its end.
inline WideBits UnitsAt(XStringView text, std::size_t at) {
  if (at >= text.size()) return {};
  const XCHAR* const units = text.data() + at;
  const std::size_t left = text.size() - at;
  __m128i block;
  if (left >= kTextBlock) {
    block = LoadBlock(units);
  } else {
    XCHAR padded[kTextBlock] = {};
    std::copy_n(units, left, padded);
    block = LoadBlock(padded);
  }
  // The first unit becomes the highest of its word.
  constexpr int kReversed = 0x1B;
  block = _mm_shufflehi_epi16(_mm_shufflelo_epi16(block, kReversed), kReversed);
  return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(block)),
          static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(block, block)))};
}
inline WideBits UnitsAt(std::string_view key, std::size_t at) {
  std::uint64_t words[2] = {};
  if (at < key.size()) std::memcpy(words, key.data() + at, std::min(key.size() - at, sizeof words));
  return {__builtin_bswap64(words[0]), __builtin_bswap64(words[1])};
}

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
      shared_ = rest;
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
      if (const int order = rest.compare(shared_); order != 0) return order < 0 ? kTextBefore : kTextBehind;
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
