// Excel's own functions that the host offers: the table, and what their implementations share.
#pragma once

#include <array>
#include <initializer_list>
#include <span>
#include <vector>

#include "host/calculation/broadcast.h"
#include "host/calculation/evaluation_context.h"
#include "host/values/conversion.h"

namespace qcalc {

/// What an implementation gets: evaluated operands, at least and at most as many as its entry says. References are
/// kept; an operand left empty behind its comma is missing.
struct BuiltinCall {
  std::span<const Value> operands;
  const EvaluationContext& context;
};

struct Builtin {
  XStringView name;  ///< in capitals
  std::size_t leastOperands;
  std::size_t mostOperands;
  Value (*call)(const BuiltinCall&);
  /// What each operand is, a letter each, the last one for all that follow: `v` one value (of a range, in a formula of
  /// the form kSingle, the cell in line with the formula's), `a` an array, calculated element by element in every form,
  /// `r` whatever stands there, a reference as such.
  const char* operands = "v";
  bool isVolatile = false;  ///< may give another value in every recalculation, whether its operands changed or not
};

/// The entry of that name, in any case; null when there is none. CHOOSE, IF, IFERROR and IFNA are not among them: the
/// evaluator calculates but the branch that is taken.
const Builtin* FindBuiltin(XStringView name);
/// The names of all that formulas may call, those four too.
std::vector<XStringView> BuiltinNames();

/// The entries by family.
std::span<const Builtin> AggregateBuiltins();
std::span<const Builtin> ArrayBuiltins();
std::span<const Builtin> ConditionBuiltins();
std::span<const Builtin> DateBuiltins();
std::span<const Builtin> InformationBuiltins();
std::span<const Builtin> LogicBuiltins();
std::span<const Builtin> LookupBuiltins();
std::span<const Builtin> NumberBuiltins();
std::span<const Builtin> PlaceBuiltins();
std::span<const Builtin> ReferenceBuiltins();
std::span<const Builtin> SearchBuiltins();
std::span<const Builtin> SortBuiltins();
std::span<const Builtin> TextBuiltins();
std::span<const Builtin> TextPartBuiltins();

/// The operand at that place, dereferenced; missing when it was left out.
Value ScalarOperand(const BuiltinCall& call, std::size_t index);
/// All operands dereferenced.
std::vector<Value> ScalarOperands(const BuiltinCall& call);
/// The same; behind the first `required` ones, those that are left out at the end are the numbers of `defaults`.
std::vector<Value> ScalarOperands(const BuiltinCall& call, std::size_t required,
                                  std::initializer_list<double> defaults);
/// Of a reference the value of its first cell; any other operand as it is.
Value FirstCell(const Value& operand, const Workbooks& workbooks);
/// One area of a sheet.
struct Range {
  const Sheet* sheet = nullptr;
  Area area;
};
/// The operand as cells: an error, #VALUE! for what is no reference to one area, or empty and `range` set.
Value ReadRange(const Value& operand, const Workbooks& workbooks, Range& range);
/// The cells of that part of a reference (a reference again), of an array, or the single value; zero-based, within it.
Value TakePart(const Value& source, const Area& part);
/// A number cut off towards zero, from a cell by Excel's conversions; `whole` receives it, the result is an error or
/// empty. Numbers beyond 2^31 give #VALUE!.
Value ToWholeNumber(const CellView& cell, NumberMarks marks, std::int32_t& whole);
/// A text as a result: #VALUE! where it is longer than a cell holds.
Value TextResult(XString text);

/// Calls `calculate(const double*) -> Value` element by element with the operands as numbers, kMostNumbers of them at
/// most. What does not convert gives its error, the first one that of the element.
constexpr std::size_t kMostNumbers = 4;
template <typename Calculate>
Value BroadcastNumbers(std::span<const Value> operands, NumberMarks marks, Calculate&& calculate) {
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    std::array<double, kMostNumbers> numbers{};
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const Value number = ToNumber(cells[i], marks);
      if (number.IsError()) return number;
      numbers[i] = number.AsNumber();
    }
    return calculate(static_cast<const double*>(numbers.data()));
  });
}

}  // namespace qcalc
