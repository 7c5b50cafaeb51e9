// Whether tuples of cells are equal, and asking for the memory that the answer takes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/text/fold_case.h"
#include "table/cell_hash.h"
#include "table/cell_tuples.h"
#include "table/compare.h"
#include "table/place_index.h"

namespace quillmere {

/// Whether CompareOpers, with the case of texts as asked, gives 0 for two single cells. A number that is none equals
/// nothing here.
template <TextCase textCase>
inline bool CellsEqual(const XLOPER12& a, const XLOPER12& b) {
  if (IsNumberCell(a)) return IsNumberCell(b) && a.val.num == b.val.num;
  if (IsTextCell(a)) {
    constexpr auto kEqual = textCase == TextCase::kIgnored ? EqualFolded : EqualExact;
    return IsTextCell(b) && kEqual(TextOf(a), TextOf(b));
  }
  return CompareOpers(&a, &b) == 0;
}

/// Whether two tuples of as many parts are equal, part by part.
template <TextCase textCase, CellTuples Tuples, CellTuples Others>
inline bool TuplesEqual(const Tuples& tuples, std::int32_t place, const Others& others, std::int32_t otherPlace) {
  for (std::size_t part = 0; part < tuples.Parts(); ++part) {
    const XLOPER12& cell = tuples.Meaning(*tuples.CellAt(place, part));
    if (!CellsEqual<textCase>(cell, others.Meaning(*others.CellAt(otherPlace, part)))) return false;
  }
  return true;
}

/// Asks for the cells of a tuple; for nothing when the place is kNoEntry.
template <CellTuples Tuples>
inline void PrefetchTuple(const Tuples& tuples, std::int32_t place) noexcept {
  for (std::size_t part = 0; place != kNoEntry && part < tuples.Parts(); ++part)
    PrefetchCell(tuples.CellAt(place, part));
}
/// And for its texts, when the cells are there.
template <CellTuples Tuples>
inline void PrefetchTexts(const Tuples& tuples, std::int32_t place) {
  for (std::size_t part = 0; place != kNoEntry && part < tuples.Parts(); ++part)
    PrefetchText(*tuples.CellAt(place, part));
}

}  // namespace quillmere
