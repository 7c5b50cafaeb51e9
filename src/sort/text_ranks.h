// The places of texts among each other, found once for each distinct text.
#pragma once

#include <cstdint>
#include <span>

#include "frame/locale/collation.h"
#include "frame/values/scratch_array.h"
#include "table/cell_line.h"

namespace quillmere::sort {

/// Ranks from 0: of two texts the one with the lower rank comes first, and texts of one rank are equal.
using TextRanks = ScratchArray<std::uint32_t>;

/// The ranks of the texts at some places of a line, in the order of those places, by the user's language; of texts that
/// it does not tell apart the shorter comes first. A key is made of each text, and made anew where texts are alike far
/// into their keys: to hold all keys would take more memory than the texts do.
TextRanks RankByLanguage(const CellLine& line, std::span<const std::int32_t> places, LetterCase letterCase);

/// The same of all texts in a line, at their places, where a key is made for each distinct text alone. What stands at
/// the places of other cells means nothing.
TextRanks RankLineByLanguage(const CellLine& line, LetterCase letterCase);

/// The ranks in the order of units, a shorter text before those that it begins.
TextRanks RankLineByUnits(const CellLine& line);

/// Whether so many of the texts in a line are equal to others that their ranks are found sooner than their order.
bool HasFewTexts(const CellLine& line);

}  // namespace quillmere::sort
