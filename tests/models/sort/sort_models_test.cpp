// The sorts, distinct lists, joins and comparisons, in arrays and in references, on one thread and on eight.
#include <gtest/gtest.h>

#include <algorithm>

#include "host/values/literal.h"
#include "host/values/value_order.h"
#include "tests/models/random_calls.h"
#include "tests/models/sort/model.h"

namespace qcalc::sort {
namespace {

using models::Caller;

// Every so many calls are made on all threads at once.
constexpr std::uint64_t kParallelEvery = 20;
constexpr int kThreads = 8;

/// The tables written out; now and then one of a single cell is a plain value.
std::vector<Value> WrittenOperands(const Call& call, bool isPlain) {
  std::vector<Value> operands;
  for (const ArrayPtr& table : call.tables)
    operands.push_back(isPlain && table->Size() == 1 ? Value::OfCell(table->At(0, 0)) : Value::OfArray(table));
  operands.insert(operands.end(), call.settings.begin(), call.settings.end());
  return operands;
}

/// Puts the tables beside one another in a sheet. The highest ones are those that may go down to its end.
std::vector<Value> ReferringOperands(const Call& call, Caller& caller) {
  Rows all;
  for (const ArrayPtr& table : call.tables) {
    Rows rows = RowsOf(*table);
    const std::size_t width = all.empty() ? 0 : all[0].size();
    all.resize(std::max(all.size(), rows.size()), Row(width));
    rows.resize(all.size(), Row(rows[0].size()));
    for (std::size_t i = 0; i < all.size(); ++i) all[i].insert(all[i].end(), rows[i].begin(), rows[i].end());
  }
  const Reference whole = caller.PutInSheet(ArrayOf(all), 0).AsReference();
  std::vector<Value> operands = WrittenOperands(call, false);
  Area area = whole.areas[0];
  for (std::size_t i = 0; i < call.tables.size(); ++i) {
    const Array& table = *call.tables[i];
    area = Area::OfSize(area.firstRow, area.firstColumn, table.Rows(), table.Columns());
    const bool isHighest = area.lastRow == whole.areas[0].lastRow;
    if (call.isTall && isHighest && area.firstRow < kXlMaxRows / 2) area.lastRow = kXlMaxRows - 1;
    operands[i] = Value::OfReference({whole.sheet, {area}});
    area.firstColumn = area.lastColumn + 1;
  }
  return operands;
}

std::string WhatIsWrong(std::uint64_t number, Draw& draw, Model& model) {
  constexpr std::size_t kMostTold = 2'000;
  Caller& caller = models::TheRun().caller;
  const Call call = draw(models::TheRun().settings.seed, number, caller.Places());
  const Value expected = model(call);
  const std::vector<Value> operands =
      call.isReference ? ReferringOperands(call, caller) : WrittenOperands(call, number % 2 == 0);
  const int threads = number % kParallelEvery == 0 ? kThreads : 1;
  std::string different;
  for (const Value& actual : caller.CallOnThreads(threads, call.function, operands, call.place))
    if (!SameValue(expected, actual, {1e-12, 1e-12}))
      different = "\n  expected " + PrintLiteral(expected).substr(0, kMostTold) + "\n  got      " +
                  PrintLiteral(actual).substr(0, kMostTold);
  const std::string wrong = caller.Complaints() + different;
  if (wrong.empty()) return "";
  return caller.Describe(call.function, WrittenOperands(call, false), call.place).substr(0, kMostTold) +
         (call.isReference ? "\n  the tables in " + caller.DescribeTable() : "") + (call.isTall ? ", to its end" : "") +
         (threads > 1 ? "\n  on several threads" : "") + wrong;
}

void TryCalls(Draw& draw, Model& model) {
  models::TryCalls([&](std::uint64_t number) { return WhatIsWrong(number, draw, model); });
}

TEST(SortModels, Sorts) { TryCalls(DrawSort, ExpectedSort); }

TEST(SortModels, DistinctLists) { TryCalls(DrawDistinct, ExpectedDistinct); }

TEST(SortModels, Joins) { TryCalls(DrawJoin, ExpectedJoin); }

}  // namespace
}  // namespace qcalc::sort
