// What a calculation gives against what a file has had.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/output/changed_cells.h"

namespace qcalc {

/// The values that the cells of a sheet's formulas hold before it is calculated.
class CachedValues {
 public:
  explicit CachedValues(const Sheet& sheet) : sheet_(sheet) {}

  /// Keeps what stands in the cells that a formula filled. To be called once for each formula, in the order of their
  /// positions, before anything is written to the sheet.
  void Note(const Area& filledBefore);
  /// What stood in the cell, where it lies in the area noted as the `formula`-th, from 0; else nothing.
  CellView At(std::size_t formula, const Area& filledBefore, CellPosition position) const;

 private:
  const Sheet& sheet_;
  std::vector<std::size_t> starts_;
  std::vector<CellView> cells_;
  std::shared_ptr<const TextPool> texts_;
};

/// Whether a value as a file has it can be that one: numbers are equal to 15 significant digits, as other programs
/// store no more; an error younger than such files is #VALUE! in them.
bool EqualsStored(const CellView& stored, const CellView& value);

/// What became of comparing.
struct Comparison {
  static constexpr std::int64_t kMostLines = 1000;

  std::int64_t compared = 0;
  std::int64_t different = 0;
  std::int64_t withoutValue = 0;   ///< formulas for which the file has no value, which are passed over
  std::vector<std::string> lines;  ///< `Data!B7: 12.5, the book has 12.4` for each of the first differences
};

/// Holds the values of a sheet's calculated formulas, and of all cells that they fill or no longer fill, against those
/// kept. `cached` has an area noted for each formula of `results`.
void Compare(const SheetResults& results, const CachedValues& cached, Comparison& comparison);

}  // namespace qcalc
