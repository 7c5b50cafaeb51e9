// Taking out of words the bits that tell them apart.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace quillmere::sort {

/// 128 bits by which values are ordered, `high` before `low`.
struct WideBits {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
};

/// Which bits differ among values.
class BitSurvey {
 public:
  void Add(const WideBits& bits) noexcept {
    someSet_.high |= bits.high;
    someSet_.low |= bits.low;
    allSet_.high &= bits.high;
    allSet_.low &= bits.low;
  }
  /// Whether there were values at all.
  bool HasAny() const noexcept { return (someSet_.high | ~allSet_.high) != 0; }
  WideBits Varying() const noexcept {
    if (!HasAny()) return {};
    return {someSet_.high ^ allSet_.high, someSet_.low ^ allSet_.low};
  }

 private:
  WideBits someSet_{0, 0};
  WideBits allSet_{~std::uint64_t{0}, ~std::uint64_t{0}};
};

/// Takes some bits out of words and puts them side by side, in their order.
class BitPacker {
 public:
  BitPacker() noexcept = default;
  /// Takes the `most` highest of the varying bits, or all where there are fewer.
  BitPacker(const WideBits& varying, int most) noexcept {
    AddRuns(varying.high, false, most);
    AddRuns(varying.low, true, most);
  }

  /// How many bits are taken.
  int Bits() const noexcept { return bits_; }

  std::uint64_t Pack(const WideBits& from) const noexcept {
    std::uint64_t packed = 0;
    for (int i = 0; i < runCount_; ++i) {
      const Run& run = runs_[static_cast<std::size_t>(i)];
      packed = packed << run.bits | ((run.isLow ? from.low : from.high) >> run.shift & run.mask);
    }
    return packed;
  }

 private:
  /// Neighbouring bits that all are taken.
  struct Run {
    std::uint64_t mask;
    std::uint8_t shift;
    std::uint8_t bits;
    bool isLow;
  };

  void AddRuns(std::uint64_t varying, bool isLow, int most) noexcept {
    while (varying != 0 && bits_ < most) {
      const int top = 63 - std::countl_zero(varying);
      const int length = std::min(std::countl_one(varying << (63 - top)), most - bits_);
      const int shift = top + 1 - length;
      const std::uint64_t mask = length == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << length) - 1;
      runs_[static_cast<std::size_t>(runCount_++)] = {mask, static_cast<std::uint8_t>(shift),
                                                      static_cast<std::uint8_t>(length), isLow};
      bits_ += length;
      varying &= ~(mask << shift);
    }
  }

  std::array<Run, 64> runs_;
  int runCount_ = 0;
  int bits_ = 0;
};

}  // namespace quillmere::sort
