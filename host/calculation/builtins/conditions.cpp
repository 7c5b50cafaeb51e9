// AVERAGEIF, AVERAGEIFS, COUNTIF, COUNTIFS, MAXIFS, MINIFS, SUMIF, SUMIFS.
#include "host/calculation/builtins/aggregates.h"
#include "host/calculation/builtins/criterion.h"
#include "host/calculation/lookup_search.h"

namespace qcalc {

namespace {

struct Condition {
  Range range;
  Criterion criterion;

  bool Takes(std::int32_t row, std::int32_t column) const {
    return criterion.Matches(range.sheet->Get(range.area.firstRow + row, range.area.firstColumn + column));
  }
};
using Conditions = std::vector<Condition>;

bool SameSize(const Area& left, const Area& right) {
  return left.Rows() == right.Rows() && left.Columns() == right.Columns();
}

// The first condition that no empty cell meets; as many as there are where each may.
std::size_t FirstOfFilled(const Conditions& conditions) {
  const auto found = std::find_if(conditions.begin(), conditions.end(),
                                  [](const Condition& condition) { return !condition.criterion.MatchesEmpty(); });
  return static_cast<std::size_t>(found - conditions.begin());
}

// Whether those from `first` up to `end` take the cells at that place, counted from the first of their ranges.
bool AllTake(const Conditions& conditions, std::size_t first, std::size_t end, std::int32_t row, std::int32_t column) {
  for (std::size_t i = first; i < end; ++i)
    if (!conditions[i].Takes(row, column)) return false;
  return true;
}

// Calls `visitor(row, column)`, counted from the first cells of the ranges, where all conditions hold; the condition
// with that number is none that empty cells meet.
template <typename Visitor>
void VisitFilled(const Conditions& conditions, std::size_t filled, Visitor&& visitor) {
  const Range& range = conditions[filled].range;
  conditions[filled].criterion.VisitMatches(*range.sheet, range.area, [&](std::int32_t row, std::int32_t column) {
    row -= range.area.firstRow;
    column -= range.area.firstColumn;
    if (AllTake(conditions, 0, filled, row, column) && AllTake(conditions, filled + 1, conditions.size(), row, column))
      visitor(row, column);
  });
}

double CountPlaces(const Conditions& conditions) {
  const Area& area = conditions[0].range.area;
  const std::size_t filled = FirstOfFilled(conditions);
  std::int64_t count = 0;
  if (filled < conditions.size()) {
    VisitFilled(conditions, filled, [&](std::int32_t, std::int32_t) { ++count; });
    return static_cast<double>(count);
  }
  // Empty cells meet all: what is left out are cells that something stands in, each by the first that it fails.
  count = std::int64_t{area.Rows()} * area.Columns();
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    const Range& range = conditions[i].range;
    range.sheet->VisitUsed(range.area, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
      if (!conditions[i].criterion.Matches(cell) &&
          AllTake(conditions, 0, i, row - range.area.firstRow, column - range.area.firstColumn))
        --count;
    });
  }
  return static_cast<double>(count);
}

// What the numbers in `values` come to where all conditions hold.
Value AggregatePlaces(Aggregate kind, const Conditions& conditions, const Range& values) {
  return Aggregated(kind, [&](auto&& visitor) {
    FirstError error;
    const auto take = [&](std::int32_t row, std::int32_t column, const CellView& cell) {
      if (cell.IsNumber()) visitor(cell.AsNumber());
      if (cell.IsError()) error.Note({row, column}, cell);
    };
    const Sheet* const sheet = values.sheet;
    const Area& area = values.area;
    if (const std::size_t filled = FirstOfFilled(conditions); filled < conditions.size())
      VisitFilled(conditions, filled, [&](std::int32_t row, std::int32_t column) {
        take(row, column, sheet->Get(area.firstRow + row, area.firstColumn + column));
      });
    else
      sheet->VisitUsed(area, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
        if (AllTake(conditions, 0, conditions.size(), row - area.firstRow, column - area.firstColumn))
          take(row, column, cell);
      });
    return error.Result();
  });
}

// Pairs of a range and a criterion from the operand `first` on, over which `calculate(const Conditions&)` is broadcast.
// The ranges have the size of `size`, or where that is null of the first one.
template <typename Calculate>
Value OverCriteria(const BuiltinCall& call, std::size_t first, const Area* size, Calculate&& calculate) {
  std::vector<Range> ranges;
  std::vector<Value> criteria;
  for (std::size_t i = first; i + 1 < call.operands.size(); i += 2) {
    ranges.emplace_back();
    if (Value fault = ReadRange(call.operands[i], *call.context.workbooks, ranges.back()); fault.IsError())
      return fault;
    if (!SameSize(ranges.back().area, size ? *size : ranges.front().area)) return Value::Error(xlerrValue);
    criteria.push_back(ScalarOperand(call, i + 1));
  }
  return Broadcast(criteria, [&](std::span<const CellView> cells) {
    Conditions conditions;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (cells[i].IsText() && cells[i].AsText().size() > kMaxLookupText) return Value::Error(xlerrValue);
      conditions.push_back({ranges[i], Criterion(cells[i], call.context.marks)});
    }
    return calculate(conditions);
  });
}

Value CallCountifs(const BuiltinCall& call) {
  if (call.operands.size() % 2 != 0) return Value::Error(xlerrValue);
  return OverCriteria(call, 0, nullptr,
                      [](const Conditions& conditions) { return Value::Number(CountPlaces(conditions)); });
}

// The range that is added up stands last, may be left out, and has the size of the other whatever it says.
template <Aggregate kind>
Value CallIf(const BuiltinCall& call) {
  Range tested;
  if (Value fault = ReadRange(call.operands[0], *call.context.workbooks, tested); fault.IsError()) return fault;
  Range values = tested;
  if (call.operands.size() > 2 && !call.operands[2].IsMissing()) {
    if (Value fault = ReadRange(call.operands[2], *call.context.workbooks, values); fault.IsError()) return fault;
    values.area =
        Area::OfSize(values.area.firstRow, values.area.firstColumn, tested.area.Rows(), tested.area.Columns());
  }
  return OverCriteria({call.operands.first(2), call.context}, 0, nullptr,
                      [&](const Conditions& conditions) { return AggregatePlaces(kind, conditions, values); });
}

template <Aggregate kind>
Value CallIfs(const BuiltinCall& call) {
  if (call.operands.size() % 2 == 0) return Value::Error(xlerrValue);
  Range values;
  if (Value fault = ReadRange(call.operands[0], *call.context.workbooks, values); fault.IsError()) return fault;
  return OverCriteria(call, 1, &values.area,
                      [&](const Conditions& conditions) { return AggregatePlaces(kind, conditions, values); });
}

// Ranges and criteria in turn.
constexpr auto kPairs = [] {
  std::array<char, kXlMaxArguments + 2> letters{};
  for (std::size_t i = 0; i + 1 < letters.size(); ++i) letters[i] = i % 2 == 0 ? 'r' : 'v';
  return letters;
}();
constexpr auto kPairsBehindValues = [] {
  std::array<char, kXlMaxArguments + 1> letters{'r'};
  for (std::size_t i = 1; i + 1 < letters.size(); ++i) letters[i] = i % 2 == 1 ? 'r' : 'v';
  return letters;
}();

constexpr Builtin kConditionBuiltins[] = {
    {XTEXT("AVERAGEIF"), 2, 3, CallIf<Aggregate::kAverage>, "rvr"},
    {XTEXT("AVERAGEIFS"), 3, kXlMaxArguments, CallIfs<Aggregate::kAverage>, kPairsBehindValues.data()},
    {XTEXT("COUNTIF"), 2, 2, CallCountifs, "rv"},
    {XTEXT("COUNTIFS"), 2, kXlMaxArguments, CallCountifs, kPairs.data()},
    {XTEXT("MAXIFS"), 3, kXlMaxArguments, CallIfs<Aggregate::kGreatest>, kPairsBehindValues.data()},
    {XTEXT("MINIFS"), 3, kXlMaxArguments, CallIfs<Aggregate::kLeast>, kPairsBehindValues.data()},
    {XTEXT("SUMIF"), 2, 3, CallIf<Aggregate::kSum>, "rvr"},
    {XTEXT("SUMIFS"), 3, kXlMaxArguments, CallIfs<Aggregate::kSum>, kPairsBehindValues.data()}};

}  // namespace

std::span<const Builtin> ConditionBuiltins() { return kConditionBuiltins; }

}  // namespace qcalc
