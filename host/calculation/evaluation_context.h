// Where a formula stands while it is evaluated, and what ends an evaluation without a value.
#pragma once

#include <map>
#include <optional>
#include <stdexcept>

#include "host/values/number_marks.h"
#include "host/values/value.h"
#include "host/workbook/workbooks.h"

namespace qcalc {

class FunctionProfile;
class IAddinFunctions;

/// Values bound to names by `let`; keys are without case (FoldCase). An array stays an array, a reference a reference.
using NamedValues = std::map<XString, Value>;

/// Where a formula stands. The pointers outlive the evaluation; names and add-in may be null.
struct EvaluationContext {
  const Workbooks* workbooks = nullptr;
  const Sheet* sheet = nullptr;  ///< what unqualified references mean
  const NamedValues* names = nullptr;
  IAddinFunctions* addin = nullptr;
  Reference caller;   ///< the calling cells; what xlfCaller answers
  NumberMarks marks;  ///< of numbers and dates in texts; those of formulas are always points
  /// Where the calling cell keeps what xlfVolatile asks for; may be null.
  std::optional<bool>* askedVolatile = nullptr;
  FormulaForm form = FormulaForm::kSpilling;
  /// A function that nobody knows ends the evaluation with a FormulaError, where it is #NAME? else: a file's cell keeps
  /// what the function's owner had it give.
  bool refusesUnknown = false;
  /// Notes what calls of functions cost; may be null.
  FunctionProfile* profile = nullptr;
};

/// The formula cannot be evaluated at all: not a value of Excel's, but a mistake in the script or a limit of the host.
class FormulaError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Thrown where this cell was to be read before its calculation, and by IAddinFunctions::Call when the add-in gave up
/// because it met the cell so (it was answered xlretUncalced). Recalculation calculates the cell and evaluates again.
struct UncalculatedCell {
  IDSHEET sheet;
  CellPosition position;
};

/// Thrown by IAddinFunctions::Call when a thread-safe function reached, through xlUDF or xlfEvaluate, one that is not.
struct NotThreadSafe {};

/// The cells that the reference means in a formula there: a reference, or the error that it is.
Value CellsOfTable(const Table& table, const TableReference& reference, const EvaluationContext& context);

/// Throws UncalculatedCell for the first cell of the reference whose value does not count yet.
void CheckCalculated(const Reference& reference, const Workbooks& workbooks);

}  // namespace qcalc
