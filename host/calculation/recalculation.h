// Recalculation: formula cells in dependency order, on several threads, spilled results.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "host/calculation/calculation_threads.h"
#include "host/calculation/evaluation_context.h"
#include "host/calculation/unknown_names.h"

namespace qcalc {

struct SheetCell {
  IDSHEET sheet;
  CellPosition position;
};

/// Why a formula has no value.
struct CalculationFailure {
  /// Its cell; of a circle all of its cells, each of which reads the next, and the last one the first.
  std::vector<SheetCell> cells;
  /// Empty for a circle.
  std::string reason;
};

struct CalculationOutcome {
  std::int64_t calculated = 0;  ///< formulas that have their value
  std::vector<CalculationFailure> failures;
  /// The cells of formulas that read, directly or not, the cells of failures.
  std::vector<SheetCell> dependents;
};

struct CalculationSettings {
  UnknownNames* unknown = nullptr;         ///< Evaluate's
  ICalculationThreads* threads = nullptr;  ///< without them, all is done on this thread
  /// What texts and arrays of results may take in all; a formula whose result goes beyond has no value.
  std::size_t mostBytes = std::numeric_limits<std::size_t>::max();
};

/// Calculates every dirty formula cell of all books: cells before the formulas that read them, each with its own cells
/// as the caller. Dirty is a new formula, one that reads changed cells or a changed name, and one that calls a volatile
/// function. What becomes of an array is the formula's form (FormulaForm): one that spills fills empty neighbours, and
/// is #SPILL! when a cell is in its way or the sheet ends. A formula that waits for itself only in a branch that is not
/// taken is no circle. `workbooks`, `names` and `addin` are taken from `context`, which must have the first; its sheet
/// and caller are not looked at.
/// Formulas that could not be calculated keep the values of their cells and stay dirty, and so does all that depends on
/// them; the others are calculated. Results are the same on any number of threads.
CalculationOutcome Recalculate(Workbooks& workbooks, const EvaluationContext& context,
                               const CalculationSettings& settings = {});

/// One sentence: "[Book1]Sheet1!A1: why", "circular reference: [Book1]Sheet1!A1 -> [Book1]Sheet1!A1".
std::string Describe(const CalculationFailure& failure, const Workbooks& workbooks);

}  // namespace qcalc
