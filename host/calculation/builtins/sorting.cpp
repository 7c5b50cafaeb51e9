// FILTER, SORT, UNIQUE.
#include <algorithm>
#include <numeric>

#include "host/calculation/builtins/builtin.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

ArrayPtr AsArray(const Value& value) {
  if (value.IsArray()) return value.AsArray();
  ArrayBuilder builder(1, 1);
  builder.Set(0, 0, value.AsCell());
  return builder.Finish();
}

// The rows of an array, or its columns.
class Lines {
 public:
  using Numbers = std::vector<std::int32_t>;

  Lines(const Array& array, bool areColumns) : array_(array), areColumns_(areColumns) {}

  std::int32_t Count() const { return areColumns_ ? array_.Columns() : array_.Rows(); }
  std::int32_t Length() const { return areColumns_ ? array_.Rows() : array_.Columns(); }
  const CellView& At(std::int32_t line, std::int32_t place) const {
    return areColumns_ ? array_.At(place, line) : array_.At(line, place);
  }
  Numbers All() const {
    Numbers numbers(static_cast<std::size_t>(Count()));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
  }
  // An array of these lines alone, of which there is one at least.
  Value Picked(const Numbers& lines) const {
    const auto count = static_cast<std::int32_t>(lines.size());
    ArrayBuilder builder(areColumns_ ? Length() : count, areColumns_ ? count : Length());
    builder.ShareTextsOf(array_);
    for (std::int32_t line = 0; line < count; ++line)
      for (std::int32_t place = 0; place < Length(); ++place)
        builder.SetShared(areColumns_ ? place : line, areColumns_ ? line : place,
                          At(lines[static_cast<std::size_t>(line)], place));
    return Value::OfArray(builder.Finish());
  }

 private:
  const Array& array_;
  bool areColumns_;
};

int RankOf(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kNumber:
      return 0;
    case CellKind::kText:
      return 1;
    case CellKind::kBoolean:
      return 2;
    case CellKind::kError:
      return 3;
    case CellKind::kEmpty:
      break;
  }
  return 4;
}

// Numbers, texts, FALSE, TRUE, errors, empty ones.
std::partial_ordering Order(const CellView& left, const CellView& right) {
  if (left.Kind() != right.Kind()) return RankOf(left) <=> RankOf(right);
  if (left.IsEmpty() || left.IsError()) return std::partial_ordering::equivalent;
  return CompareKey(left, right);
}

struct SortKey {
  std::int32_t place = 0;
  bool isDescending = false;
};

// Errors stay among each other as they are, and empty cells come last whatever the order.
void Sort(const Lines& lines, const std::vector<SortKey>& keys, Lines::Numbers& numbers) {
  std::stable_sort(numbers.begin(), numbers.end(), [&](std::int32_t left, std::int32_t right) {
    for (const SortKey& key : keys) {
      const CellView &l = lines.At(left, key.place), &r = lines.At(right, key.place);
      const auto order = Order(l, r);
      if (order != 0) return key.isDescending && !l.IsEmpty() && !r.IsEmpty() ? order > 0 : order < 0;
    }
    return false;
  });
}

// TRUE or FALSE; false where the operand is left out.
Value ReadSwitch(const BuiltinCall& call, std::size_t index, bool& isOn) {
  const Value operand = ScalarOperand(call, index);
  const Value truth = operand.IsArray() ? Value::Error(xlerrValue) : ToBoolean(operand.AsCell());
  if (truth.IsError()) return truth;
  isOn = truth.AsBoolean();
  return {};
}

// A list of whole numbers; 1 where the operand is left out.
Value ReadList(const BuiltinCall& call, std::size_t index, std::vector<std::int32_t>& list) {
  const Value operand = ScalarOperand(call, index);
  const ArrayPtr array = AsArray(operand.IsMissing() ? Value::Number(1) : operand);
  for (const CellView& cell : array->Cells()) {
    list.emplace_back();
    if (Value fault = ToWholeNumber(cell, call.context.marks, list.back()); fault.IsError()) return fault;
  }
  return {};
}

// Several places to sort by are each sorted in the order of the same number, or all in the one that is given.
Value CallSort(const BuiltinCall& call) {
  const Value source = ScalarOperand(call, 0);
  if (source.IsError()) return source;
  std::vector<std::int32_t> places, orders;
  bool areColumns = false;
  if (Value fault = ReadList(call, 1, places); fault.IsError()) return fault;
  if (Value fault = ReadList(call, 2, orders); fault.IsError()) return fault;
  if (Value fault = ReadSwitch(call, 3, areColumns); fault.IsError()) return fault;
  if (orders.size() == 1) orders.resize(places.size(), orders[0]);
  if (orders.size() != places.size()) return Value::Error(xlerrValue);
  const ArrayPtr array = AsArray(source);
  const Lines lines(*array, areColumns);
  std::vector<SortKey> keys;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] < 1 || places[i] > lines.Length() || (orders[i] != 1 && orders[i] != -1))
      return Value::Error(xlerrValue);
    keys.push_back({places[i] - 1, orders[i] < 0});
  }
  Lines::Numbers numbers = lines.All();
  Sort(lines, keys, numbers);
  return lines.Picked(numbers);
}

// How two lines stand in an order in which equal lines, and those alone, are neighbours.
std::partial_ordering OrderWhole(const Lines& lines, std::int32_t left, std::int32_t right) {
  for (std::int32_t place = 0; place < lines.Length(); ++place) {
    const CellView &l = lines.At(left, place), &r = lines.At(right, place);
    const auto order = l.IsError() && r.IsError() ? l.AsError() <=> r.AsError() : Order(l, r);
    if (order != 0) return order;
  }
  return std::partial_ordering::equivalent;
}

Value CallUnique(const BuiltinCall& call) {
  const Value source = ScalarOperand(call, 0);
  if (source.IsError()) return source;
  bool areColumns = false, isOnce = false;
  if (Value fault = ReadSwitch(call, 1, areColumns); fault.IsError()) return fault;
  if (Value fault = ReadSwitch(call, 2, isOnce); fault.IsError()) return fault;
  const ArrayPtr array = AsArray(source);
  const Lines lines(*array, areColumns);
  Lines::Numbers sorted = lines.All(), kept;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&](std::int32_t left, std::int32_t right) { return OrderWhole(lines, left, right) < 0; });
  for (auto group = sorted.begin(); group != sorted.end();) {
    const auto end =
        std::find_if(group, sorted.end(), [&](std::int32_t line) { return OrderWhole(lines, *group, line) != 0; });
    if (!isOnce || end - group == 1) kept.push_back(*group);
    group = end;
  }
  if (kept.empty()) return Value::Error(kErrorCalc);
  std::sort(kept.begin(), kept.end());
  return lines.Picked(kept);
}

// The rows, or where the second operand is as wide as the first and one row, the columns beside which that is true.
Value CallFilter(const BuiltinCall& call) {
  const Value source = ScalarOperand(call, 0), given = ScalarOperand(call, 1);
  if (source.IsError()) return source;
  const ArrayPtr array = AsArray(source), included = AsArray(given);
  const bool areColumns = included->Columns() > 1 || array->Rows() != included->Rows();
  const Lines lines(*array, areColumns), marks(*included, areColumns);
  if (lines.Count() != marks.Count() || marks.Length() != 1) return Value::Error(xlerrValue);
  Lines::Numbers kept;
  for (std::int32_t line = 0; line < lines.Count(); ++line) {
    const Value truth = ToBoolean(marks.At(line, 0));
    if (truth.IsError()) return truth;
    if (truth.AsBoolean()) kept.push_back(line);
  }
  if (!kept.empty()) return lines.Picked(kept);
  const Value instead = ScalarOperand(call, 2);
  return instead.IsMissing() ? Value::Error(kErrorCalc) : instead;
}

constexpr Builtin kSortBuiltins[] = {{XTEXT("FILTER"), 2, 3, CallFilter, "a"},
                                     {XTEXT("SORT"), 1, 4, CallSort, "a"},
                                     {XTEXT("UNIQUE"), 1, 3, CallUnique, "avv"}};

}  // namespace

std::span<const Builtin> SortBuiltins() { return kSortBuiltins; }

}  // namespace qcalc
