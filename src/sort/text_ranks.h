// The places of texts among each other, found once for each distinct text.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "frame/locale/collation.h"
#include "frame/values/scratch_array.h"
#include "table/cell_line.h"

namespace quillmere::sort {

/// Ranks of texts, from 0: of two texts the one with the lower rank comes first, and texts of one rank are equal.
using TextRanks = ScratchArray<std::uint32_t>;

/// The texts of a line: which are equal, and the ranks of them all.
class LineRanks {
 public:
  /// Of a line that was not looked at.
  LineRanks() noexcept = default;
  /// There are so many texts; `numbers` says for each place which of the distinct texts stands there, or kNoText,
  /// `firstPlaces` where those stand first, and `ranks` what their ranks are.
  LineRanks(std::int32_t texts, ScratchArray<std::uint32_t>&& numbers, std::vector<std::int32_t>&& firstPlaces,
            TextRanks&& ranks) noexcept
      : texts_(texts), numbers_(std::move(numbers)), firstPlaces_(std::move(firstPlaces)), ranks_(std::move(ranks)) {}

  /// In place of a text's number: another cell.
  static constexpr std::uint32_t kNoText = std::numeric_limits<std::uint32_t>::max();

  bool AreKnown() const noexcept { return !numbers_.empty(); }
  /// The rank of the text at a place; another cell's must not be asked for.
  std::uint32_t At(std::size_t place) const noexcept { return ranks_[numbers_[place]]; }

  /// How many texts there are.
  std::int32_t Texts() const noexcept { return texts_; }
  /// The number of a cell's text among the distinct ones, or kNoText; and where each of those stands first.
  std::uint32_t Number(std::size_t place) const noexcept { return numbers_[place]; }
  std::span<const std::int32_t> FirstPlaces() const noexcept { return firstPlaces_; }

 private:
  std::int32_t texts_ = 0;
  ScratchArray<std::uint32_t> numbers_;
  std::vector<std::int32_t> firstPlaces_;
  TextRanks ranks_;
};

/// The ranks of the texts at some places of a line, in the order of those places, by the user's language; of texts that
/// it does not tell apart the shorter comes first. A key is made of each text, and made anew where texts are alike far
/// into their keys: to hold all keys would take more memory than the texts do.
TextRanks RankByLanguage(const CellLine& line, std::span<const std::int32_t> places, LetterCase letterCase);

/// The same of all texts in a line, where a key is made for each distinct text alone.
LineRanks RankLineByLanguage(const CellLine& line, LetterCase letterCase);

/// The ranks in the order of units, a shorter text before those that it begins.
LineRanks RankLineByUnits(const CellLine& line);

/// Whether so many of the texts in a line are equal to others that their ranks are found sooner than their order.
bool HasFewTexts(const CellLine& line);

}  // namespace quillmere::sort
