// Evaluation of formulas against the model, with the add-in's functions behind an interface.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/formulas/formula.h"
#include "host/workbook/workbooks.h"

namespace qcalc {

/// The formula cannot be evaluated at all: not a value of Excel's, but a mistake in the script or a limit of the host.
class FormulaError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Thrown by IAddinFunctions::Call when the add-in gave up because it met this cell before its calculation (it was
/// answered xlretUncalced). Recalculation calculates the cell and calls again.
struct UncalculatedCell {
  IDSHEET sheet;
  CellPosition position;
};

/// What a registered argument wants of the operand that stands in the formula.
enum class OperandKind {
  kReference,  ///< U, R: a reference where the formula has one, else the value
  kValue,      ///< Q, P: what a reference holds; a union gives #VALUE! without a call
  kByValue,    ///< A, B, J, C%, K% ...: as kValue; the callee converts
};

/// A registered function as the evaluator sees it. The implementor derives from it what else it keeps.
struct AddinFunction {
  virtual ~AddinFunction() = default;
  XString name;
  std::vector<OperandKind> operands;
  bool isVolatile = false;  ///< a cell that calls it is calculated in every recalculation
};

struct EvaluationContext;

/// The functions that the add-in registered. All of it may be called on several threads at once.
class IAddinFunctions {
 public:
  virtual ~IAddinFunctions() = default;
  /// The visible or hidden function of that name, in any case; null when there is none. Commands are not found.
  virtual const AddinFunction* Find(XStringView name) const = 0;
  /// Calls it. `operands` are as many as it registered; those left out are missing. Returns whatever came back, a
  /// reference too. May throw FormulaError and UncalculatedCell.
  virtual Value Call(const AddinFunction& function, std::span<const Value> operands,
                     const EvaluationContext& context) = 0;
};

/// Values bound to names by `let`; keys are without case (FoldCase). An array stays an array, a reference a reference.
using NamedValues = std::map<XString, Value>;

/// Where a formula stands. The pointers outlive the evaluation; names and add-in may be null.
struct EvaluationContext {
  const Workbooks* workbooks = nullptr;
  const Sheet* sheet = nullptr;  ///< what unqualified references mean
  const NamedValues* names = nullptr;
  IAddinFunctions* addin = nullptr;
  Reference caller;  ///< the calling cells; what xlfCaller answers
};

/// Evaluates the formula. The result may be a reference (Dereference gives what it holds) or an array; unknown
/// functions and names give #NAME?. Reads the model only: several threads may evaluate at once while none writes.
/// Throws FormulaError where the formula is none that the host can evaluate, with the function and the column.
Value Evaluate(const Formula& formula, const EvaluationContext& context);

/// The outermost add-in call of a formula, its operands evaluated as Call wants them.
struct PreparedCall {
  const AddinFunction* function = nullptr;
  std::vector<Value> operands;
  /// Set when Excel would not make the call at all (a union for a value argument): the result is this value.
  std::optional<Value> refused;
};

/// Stops at the outermost add-in call (the first one met from the outside in, left to right); nothing when the formula
/// makes none. Throws as Evaluate.
std::optional<PreparedCall> PrepareOutermostCall(const Formula& formula, const EvaluationContext& context);

/// Whether the name is one of Excel's own functions that the host offers. Any case.
bool IsBuiltinFunction(XStringView name);

/// Calls one of Excel's own functions with evaluated operands, as a callback (xlfSum, ...) does; nothing when the host
/// does not offer it. References count as references, scalars as direct arguments.
std::optional<Value> CallBuiltin(XStringView name, std::span<const Value> operands, const EvaluationContext& context);

}  // namespace qcalc
