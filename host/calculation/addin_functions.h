// The add-in's functions as formulas see them: what the evaluator asks of whoever holds the add-in.
#pragma once

#include <span>
#include <vector>

#include "host/values/value.h"

namespace qcalc {

struct EvaluationContext;

/// What a registered argument wants of the operand that stands in the formula.
enum class OperandKind {
  kReference,  ///< U, R: a reference where the formula has one, else the value
  kValue,      ///< Q, P, K%: what a reference holds; a union gives #VALUE! without a call
  kByValue,    ///< A, B, J, C% ...: as kValue, but one value; the callee converts
};

/// A registered function as the evaluator sees it. The implementor derives from it what else it keeps.
struct AddinFunction {
  virtual ~AddinFunction() = default;
  XString name;
  std::vector<OperandKind> operands;
  /// A cell that calls it is calculated in every recalculation, unless xlfVolatile said otherwise.
  bool isVolatile = false;
  bool isThreadSafe = false;
};

/// The functions that the add-in registered. All of it may be called on several threads at once.
class IAddinFunctions {
 public:
  virtual ~IAddinFunctions() = default;
  /// The visible or hidden function of that name, in any case; null when there is none. Commands are not found.
  virtual const AddinFunction* Find(XStringView name) const = 0;
  /// Calls it. `operands` are as many as it registered; those left out are missing. Returns whatever came back, a
  /// reference too. May throw FormulaError, UncalculatedCell and NotThreadSafe.
  virtual Value Call(const AddinFunction& function, std::span<const Value> operands,
                     const EvaluationContext& context) = 0;
};

}  // namespace qcalc
