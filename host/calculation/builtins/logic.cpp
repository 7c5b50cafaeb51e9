// AND, FALSE, NOT, OR, TRUE, XOR.
#include "host/calculation/builtins/aggregates.h"

namespace qcalc {

namespace {

// Calls `visitor(bool)` for each operand; of arrays and references numbers and booleans count alone. #VALUE! where
// nothing counts.
template <typename Visitor>
Value VisitTruths(const BuiltinCall& call, Visitor&& visitor) {
  bool anyCounts = false;
  for (const Value& operand : call.operands) {
    const auto visit = [&](const CellView& cell) {
      if (cell.IsText()) return;
      anyCounts = true;
      visitor(ToBoolean(cell).AsBoolean());
    };
    Value fault;
    if (operand.IsArray() || operand.IsReference()) {
      fault = VisitHeld(operand, *call.context.workbooks, visit);
    } else {
      fault = ToBoolean(operand.AsCell());
      if (!fault.IsError()) visit(fault.AsCell());
    }
    if (fault.IsError()) return fault;
  }
  return anyCounts ? Value() : Value::Error(xlerrValue);
}

Value CallAnd(const BuiltinCall& call) {
  bool all = true;
  const Value fault = VisitTruths(call, [&](bool truth) { all = all && truth; });
  return fault.IsError() ? fault : Value::Boolean(all);
}

Value CallOr(const BuiltinCall& call) {
  bool any = false;
  const Value fault = VisitTruths(call, [&](bool truth) { any = any || truth; });
  return fault.IsError() ? fault : Value::Boolean(any);
}

// Whether an odd number of them is true.
Value CallXor(const BuiltinCall& call) {
  bool isOdd = false;
  const Value fault = VisitTruths(call, [&](bool truth) { isOdd = isOdd != truth; });
  return fault.IsError() ? fault : Value::Boolean(isOdd);
}

Value CallNot(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [](std::span<const CellView> cells) {
    const Value truth = ToBoolean(cells[0]);
    return truth.IsError() ? truth : Value::Boolean(!truth.AsBoolean());
  });
}

Value CallTrue(const BuiltinCall&) { return Value::Boolean(true); }
Value CallFalse(const BuiltinCall&) { return Value::Boolean(false); }

constexpr Builtin kLogicBuiltins[] = {{XTEXT("AND"), 1, kXlMaxArguments, CallAnd, "r"},
                                      {XTEXT("FALSE"), 0, 0, CallFalse},
                                      {XTEXT("NOT"), 1, 1, CallNot},
                                      {XTEXT("OR"), 1, kXlMaxArguments, CallOr, "r"},
                                      {XTEXT("TRUE"), 0, 0, CallTrue},
                                      {XTEXT("XOR"), 1, kXlMaxArguments, CallXor, "r"}};

}  // namespace

std::span<const Builtin> LogicBuiltins() { return kLogicBuiltins; }

}  // namespace qcalc
