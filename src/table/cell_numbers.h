// Numbering cells of which few are distinct.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "frame/values/scratch_list.h"
#include "table/number_index.h"
#include "table/tuple_compare.h"
#include "table/tuple_hash.h"

namespace quillmere {

/// The numbers of the distinct cells of one part of tuples, from 0. They are found without a look at the cells that
/// were first: short texts are kept here, and what is no text is first looked for among cells met lately.
template <TextCase textCase, CellTuples Tuples>
class CellNumbers {
 public:
  CellNumbers(const Tuples& tuples, std::size_t part) : tuples_(tuples), part_(part) {}

  std::int32_t Count() const noexcept { return index_.Count(); }
  /// The places of the first cells, by their numbers.
  ScratchList<std::int32_t> FirstPlaces() const {
    ScratchList<std::int32_t> places;
    for (const First& first : firsts_) places.Append(first.place);
    return places;
  }

  void MakeRoomFor(std::int32_t more) {
    index_.MakeRoomFor(more, [this](std::int32_t number) { return FirstOf(number).hash; });
  }

  /// Writes the numbers of the cells at so many places, for which there must be room.
  void Add(std::span<const std::int32_t> places, std::int32_t* numbers) {
    for (std::size_t i = 0; i < places.size(); ++i) numbers[i] = Add(places[i]);
  }

 private:
  /// What is known of the first of equal cells.
  struct First {
    FewBlocks blocks;  ///< of a short text
    std::uint64_t hash;
    std::int32_t place;
    std::uint32_t units;  ///< of a short text; kNotShort for any other cell
  };
  static constexpr std::uint32_t kMostShortUnits = kFewBlocks * kTextBlock;
  static constexpr std::uint32_t kNotShort = ~std::uint32_t{0};

  /// A cell of another type than text; equal cells of a type have equal values, but for the two zeros.
  struct Recent {
    std::uint64_t value;
    std::uint32_t type;
    std::int32_t number;
  };
  static constexpr int kRecentBits = 10;
  static constexpr std::uint64_t kSpread = 0x9E37'79B9'7F4A'7C15;

  [[gnu::always_inline]] std::int32_t Add(std::int32_t place) {
    const XLOPER12& cell = CellAt(place);
    if (IsTextCell(cell)) {
      const XStringView text = TextOf(cell);
      return text.size() <= kMostShortUnits ? AddShort(place, text) : AddLong(place, HashText<textCase>(text, key_));
    }
    const std::uint32_t type = TypeOf(cell);
    const std::uint64_t value = ValueOf(cell, type);
    Recent& recent = recent_[(value * kSpread + type * kSpread) >> (64 - kRecentBits)];
    if (recent.value == value && recent.type == type) return recent.number;
    if (IsOddCell(cell)) return AddLong(place, HashOfOdd(place, key_));
    recent = {value, type, AddLong(place, HashCell<textCase>(cell, key_))};
    return recent.number;
  }

  // In line: on Windows each call would save the registers that blocks are in.
  [[gnu::always_inline]] std::int32_t AddShort(std::int32_t place, XStringView text) {
    const FewBlocks blocks = BlocksOf<textCase>(text);
    const auto units = static_cast<std::uint32_t>(text.size());
    const std::uint64_t hash = HashBlocks(blocks, units, key_);
    const std::int32_t number = index_.Add(hash, [&](std::int32_t known) {
      return FirstOf(known).units == units && EqualBlocks(FirstOf(known).blocks, blocks);
    });
    if (static_cast<std::size_t>(number) == firsts_.size()) firsts_.Append({blocks, hash, place, units});
    return number;
  }

  std::int32_t AddLong(std::int32_t place, std::uint64_t hash) {
    const std::int32_t number = index_.Add(
        hash, [&](std::int32_t known) { return CellsEqual<textCase>(CellAt(FirstOf(known).place), CellAt(place)); });
    if (static_cast<std::size_t>(number) == firsts_.size())
      firsts_.Append({FewBlocks(nullptr, 0), hash, place, kNotShort});
    return number;
  }

  static std::uint64_t ValueOf(const XLOPER12& cell, std::uint32_t type) {
    if (type == xltypeNum) return std::bit_cast<std::uint64_t>(cell.val.num);
    const bool hasValue = type == xltypeBool || type == xltypeErr || type == xltypeInt;
    return hasValue ? static_cast<std::uint32_t>(cell.val.w) : 0;
  }

  const XLOPER12& CellAt(std::int32_t place) const { return tuples_.Meaning(*tuples_.CellAt(place, part_)); }
  const First& FirstOf(std::int32_t number) const noexcept { return firsts_[static_cast<std::size_t>(number)]; }

  const Tuples& tuples_;
  const std::size_t part_;
  const HashKey key_ = HashKey::OfProcess();
  NumberIndex index_;
  ScratchList<First> firsts_;
  std::array<Recent, std::size_t{1} << kRecentBits> recent_{};
};

}  // namespace quillmere
