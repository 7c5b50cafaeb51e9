// The lookup functions in arrays and in references.
#include <gtest/gtest.h>

#include "host/values/literal.h"
#include "host/values/value_order.h"
#include "tests/models/lookup/drawn_calls.h"
#include "tests/models/random_calls.h"

namespace qcalc::lookup {
namespace {

using models::Caller;

std::vector<Value> Operands(const LookupCall& call, const Value& table) {
  std::vector<Value> operands = {call.keys, table};
  if (call.function->returnsValues) operands.push_back(call.answerColumns);
  if (!call.byExpression) operands.push_back(call.sorted);
  if (!call.byExpression || call.function->wanted != Wanted::kAll) operands.push_back(call.exactMatch);
  operands.push_back(call.lookupColumns);
  if (call.function->wanted == Wanted::kFirst) operands.push_back(call.memory);
  if (call.function->wanted == Wanted::kNth)
    operands.push_back(call.position ? Value::Number(*call.position) : Value::Missing());
  return operands;
}

/// The call as a formula with its table written out, and where that table stands.
std::string Describe(const LookupCall& call, const Caller& caller) {
  const std::string text = caller.Describe(call.Name(), Operands(call, Value::OfArray(call.table)), call.caller);
  if (!call.isReference) return text;
  return text + ", the table" + (call.rowsBelow ? ", empty rows below it, in " : " in ") + caller.DescribeTable();
}

class LookupModel : public testing::Test {
 protected:
  void TryCalls(TableKind kind) {
    models::TryCalls([&](std::uint64_t number) { return WhatIsWrong(number, kind); });
  }

 private:
  /// Memory lasts from call to call, in the add-in as in the model.
  std::string WhatIsWrong(std::uint64_t number, TableKind kind) {
    Caller& caller = models::TheRun().caller;
    const LookupCall call = DrawCall(models::TheRun().settings.seed, number, kind, caller.Places());
    const Value expected = Expected(call, memory_);
    const Value table = call.isReference ? caller.PutInSheet(call.table, call.rowsBelow) : Value::OfArray(call.table);
    const Value actual = caller.Call(call.Name(), Operands(call, table), call.caller);
    std::string wrong = caller.Complaints();
    if (!SameValue(expected, actual))
      wrong += "\n  expected " + PrintLiteral(expected) + "\n  got      " + PrintLiteral(actual);
    if (kind == TableKind::kArray && caller.Callbacks() > 0) wrong += "\n  an array is searched with callbacks";
    return wrong.empty() ? "" : Describe(call, caller) + wrong;
  }

  MemoryModel memory_;
};

TEST_F(LookupModel, Arrays) { TryCalls(TableKind::kArray); }

TEST_F(LookupModel, References) { TryCalls(TableKind::kReference); }

}  // namespace
}  // namespace qcalc::lookup
