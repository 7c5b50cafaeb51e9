// What a sort looks at of the values of one key.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "sort/packed_bits.h"

namespace quillmere::sort {

/// The kinds of values that are told apart before anything else, in ascending order; empties come last in both
/// directions. Texts that begin otherwise than most are told by that alone.
enum ValueKind : std::uint8_t {
  kNumberValue,
  kTextBefore,
  kTextWithin,
  kTextBehind,
  kBooleanValue,
  kErrorValue,
  kEmptyValue,
  kValueKinds,
};

/// Rows that stand next to each other in the order so far, and are equal in all that was looked at: in the keys before
/// `key`, and in its texts' first `depth` units.
struct EqualRun {
  std::int32_t begin;
  std::int32_t end;
  std::uint32_t key;
  std::uint32_t depth;

  std::int32_t Count() const noexcept { return end - begin; }
};

/// In place of a depth: all units are equal, and only how many there are is not known to be.
constexpr std::uint32_t kAllUnits = std::numeric_limits<std::uint32_t>::max();

/// Where the values of a run's rows go, in the order of the rows.
struct RawValues {
  std::uint64_t* high;
  std::uint64_t* low;
  std::uint8_t* kinds;
};

/// What was found out about them on the way.
struct ValueSurvey {
  std::array<BitSurvey, kValueKinds> kinds;
  /// Whether the bits of texts are all that there is of them.
  bool isWholeTexts = false;
  /// Otherwise: the depth at which the bits begin, and the one at which to go on where all of them are equal.
  std::uint32_t depth = 0;
  std::uint32_t nextDepth = 0;

  void Put(const RawValues& to, std::size_t place, ValueKind kind, const WideBits& bits) noexcept {
    to.high[place] = bits.high;
    to.low[place] = bits.low;
    to.kinds[place] = kind;
    kinds[kind].Add(bits);
  }
};

}  // namespace quillmere::sort
