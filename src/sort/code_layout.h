// Codes for the values of a key, as short as what tells them apart.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "sort/raw_values.h"

namespace quillmere::sort {

/// How the values of one key become codes whose order is theirs.
class CodeLayout {
 public:
  /// Codes of at most `most` bits, 1 to 60.
  CodeLayout(const ValueSurvey& survey, bool isDescending, int most) {
    std::array<WideBits, kValueKinds> varying;
    for (std::size_t kind = 0; kind < kValueKinds; ++kind) varying[kind] = survey.kinds[kind].Varying();
    int mostOfKind = most;
    while (CodesOf(survey, varying, mostOfKind) > std::uint64_t{1} << most) --mostOfKind;
    std::uint64_t base = 0;
    for (std::size_t i = 0; i < kValueKinds; ++i) {
      Kind& kind = kinds_[i];
      kind.base = base;
      if (!survey.kinds[i].HasAny()) continue;
      kind.packer = BitPacker(varying[i], mostOfKind);
      kind.codes = std::uint64_t{1} << kind.packer.Bits();
      base += kind.codes;
      const bool areBitsWhole = kind.packer.Bits() == CountBits(varying[i]);
      const bool isText = i == kTextBefore || i == kTextWithin || i == kTextBehind;
      kind.goesOn = !areBitsWhole || (isText && !survey.isWholeTexts);
      if (i == kTextWithin && !survey.isWholeTexts) kind.depth = areBitsWhole ? survey.nextDepth : survey.depth;
      isWhole_ &= !kind.goesOn;
    }
    bits_ = base <= 1 ? 0 : static_cast<int>(std::bit_width(base - 1));
    if (isDescending) Reverse(base - (survey.kinds[kEmptyValue].HasAny() ? 1 : 0));
  }

  int Bits() const noexcept { return bits_; }
  /// Whether values with equal codes are equal.
  bool IsWhole() const noexcept { return isWhole_; }

  std::uint64_t Code(std::uint8_t kind, const WideBits& value) const noexcept {
    const Kind& layout = kinds_[kind];
    return layout.base + (layout.packer.Pack(value) ^ layout.reversed);
  }

  /// Where to look at rows with an equal code of this key: further on in the same key, or at the next one.
  void GoOn(std::uint64_t code, EqualRun& run) const noexcept {
    const Kind& kind = *std::ranges::find_if(kinds_, [&](const Kind& each) { return code - each.base < each.codes; });
    if (!kind.goesOn) {
      ++run.key;
      run.depth = 0;
    } else if (kind.depth != kSameDepth) {
      run.depth = kind.depth;
    }
  }

 private:
  static constexpr std::uint32_t kSameDepth = kAllUnits - 1;

  struct Kind {
    BitPacker packer;
    std::uint64_t base = 0;      ///< the lowest code
    std::uint64_t codes = 0;     ///< how many
    std::uint64_t reversed = 0;  ///< bits that are turned over, since the highest value comes first
    std::uint32_t depth = kSameDepth;
    bool goesOn = false;  ///< equal codes do not mean equal values
  };

  /// Turns the order over, but for that of empties, which have the codes from `end` on.
  void Reverse(std::uint64_t end) noexcept {
    for (Kind& kind : std::span(kinds_).first(kEmptyValue)) {
      kind.base = end - kind.base - kind.codes;
      if (kind.codes != 0) kind.reversed = kind.codes - 1;
    }
  }

  static int CountBits(const WideBits& bits) noexcept { return std::popcount(bits.high) + std::popcount(bits.low); }

  /// How many codes there are when no kind has more than so many bits.
  static std::uint64_t CodesOf(const ValueSurvey& survey, const std::array<WideBits, kValueKinds>& varying, int most) {
    std::uint64_t codes = 0;
    for (std::size_t kind = 0; kind < kValueKinds; ++kind)
      if (survey.kinds[kind].HasAny()) codes += std::uint64_t{1} << std::min(CountBits(varying[kind]), most);
    return codes;
  }

  std::array<Kind, kValueKinds> kinds_;
  int bits_ = 0;
  bool isWhole_ = true;
};

}  // namespace quillmere::sort
