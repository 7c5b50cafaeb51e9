// The criteria functions in arrays and in references.
#include <gtest/gtest.h>

#include "host/values/literal.h"
#include "host/values/value_order.h"
#include "tests/models/criteria/drawn_calls.h"
#include "tests/models/random_calls.h"

namespace qcalc::criteria {
namespace {

using models::Caller;

constexpr std::size_t kPairs = 18;

/// Some columns of the drawn cells, as an array.
Value Part(const FilterCall& call, const Beside& place, std::int32_t columns) {
  ArrayBuilder part(place.rows, columns);
  for (std::int32_t row = 0; row < place.rows; ++row)
    for (std::int32_t column = 0; column < columns; ++column)
      part.Set(row, column, call.cells->At(place.row + row, place.column + column));
  return Value::OfArray(part.Finish());
}

/// The arguments; what stands in the sheet is referred to there, or written out when there is no sheet.
std::vector<Value> Operands(const FilterCall& call, const Value* sheet) {
  const auto at = [&](const Beside& place, std::int32_t columns) {
    if (!sheet) return Part(call, place, columns);
    Reference reference = sheet->AsReference();
    const Area& all = reference.areas[0];
    reference.areas[0] = Area::OfSize(all.firstRow + place.row, all.firstColumn + place.column, place.rows, columns);
    return Value::OfReference(std::move(reference));
  };
  std::vector<Value> operands;
  if (!call.function->isSorted) operands.push_back(call.sortedCount);
  operands.push_back(call.hasRange ? at({0, call.cells->Rows(), 0}, call.columns) : Value::Missing());
  operands.push_back(call.returned);
  for (const Pair& pair : call.pairs) {
    operands.push_back(pair.beside ? at(*pair.beside, 1) : pair.column);
    operands.push_back(pair.criterion);
  }
  operands.resize(operands.size() + 2 * (kPairs - call.pairs.size()), Value::Missing());
  return operands;
}

/// One a text of the criteria and one a column are enough, since arrays need not be read.
int MostCallbacks(const FilterCall& call) {
  int most = call.columns * 3;
  for (const Pair& pair : call.pairs) most += static_cast<int>(ReadCriteria(pair.criterion).size());
  return most;
}

std::string WhatIsWrong(std::uint64_t number, bool isReference) {
  Caller& caller = models::TheRun().caller;
  const FilterCall call = DrawCall(models::TheRun().settings.seed, number, isReference);
  const Value expected = Expected(call);
  const Value sheet = isReference ? caller.PutInSheet(call.cells, 0) : Value::Missing();
  const models::CallingPlace& place = caller.Places()[0];
  const Value actual = caller.Call(call.function->name, Operands(call, isReference ? &sheet : nullptr), place);
  std::string wrong = caller.Complaints();
  const Tolerance tolerance = call.function->mode == Mode::kSum ? Tolerance{1e-12, 1e-12} : Tolerance{};
  if (!SameValue(expected, actual, tolerance))
    wrong += "\n  expected " + PrintLiteral(expected) + "\n  got      " + PrintLiteral(actual);
  if (!isReference && caller.Callbacks() > MostCallbacks(call)) wrong += "\n  an array is searched with callbacks";
  if (wrong.empty()) return "";
  return caller.Describe(call.function->name, Operands(call, nullptr), place) +
         (isReference ? "\n  the cells in " + caller.DescribeTable() : "") + wrong;
}

TEST(CriteriaModel, Arrays) {
  models::TryCalls([](std::uint64_t number) { return WhatIsWrong(number, false); });
}

TEST(CriteriaModel, References) {
  models::TryCalls([](std::uint64_t number) { return WhatIsWrong(number, true); });
}

}  // namespace
}  // namespace qcalc::criteria
