// AVERAGE, COUNT, COUNTA, COUNTBLANK, LARGE, MAX, MEDIAN, MIN, PRODUCT, SMALL, STDEV, SUBTOTAL, SUM, SUMPRODUCT, SUMSQ,
// VAR and their kin.
#include "host/calculation/builtins/aggregates.h"

#include "host/formulas/formula_node.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

template <Aggregate kind>
Value CallAggregate(const BuiltinCall& call) {
  return Aggregated(kind, [&call](auto&& visitor) { return VisitNumbers(call, visitor); });
}

template <bool isOfSample, bool isRoot>
Value CallSpread(const BuiltinCall& call) {
  return Spreading({isOfSample, isRoot}, [&call](auto&& visitor) { return VisitNumbers(call, visitor); });
}

// Counts the cells of arrays and references, and the other operands, that `counts(const CellView&, bool isDirect)`.
template <typename Counts>
Value CountOperands(const BuiltinCall& call, Counts&& counts) {
  std::int64_t count = 0;
  const auto countHeld = [&](const CellView& cell) { count += counts(cell, false) ? 1 : 0; };
  for (const Value& operand : call.operands) {
    if (operand.IsArray()) {
      for (const CellView& cell : operand.AsArray()->Cells()) countHeld(cell);
    } else if (operand.IsReference()) {
      const Sheet* sheet = call.context.workbooks->FindSheet(operand.AsReference().sheet);
      if (!sheet) return Value::Error(xlerrRef);
      for (const Area& area : operand.AsReference().areas)
        sheet->VisitUsed(area, [&](std::int32_t, std::int32_t, const CellView& cell) { countHeld(cell); });
    } else if (operand.IsMissing() || counts(operand.AsCell(), true)) {
      ++count;
    }
  }
  return Value::Number(static_cast<double>(count));
}

// What is not empty counts, "" and errors too; so does an operand left empty behind its comma.
Value CallCounta(const BuiltinCall& call) {
  return CountOperands(call, [](const CellView& cell, bool) { return !cell.IsEmpty(); });
}

// Errors do not count, and spoil nothing.
Value CallCount(const BuiltinCall& call) {
  return CountOperands(call, [&call](const CellView& cell, bool isDirect) {
    return cell.IsNumber() || (isDirect && !cell.IsEmpty() && ToNumber(cell, call.context.marks).IsNumber());
  });
}

// Empty cells and texts without a unit.
Value CallCountblank(const BuiltinCall& call) {
  Range range;
  if (Value fault = ReadRange(call.operands[0], *call.context.workbooks, range); fault.IsError()) return fault;
  const auto& [sheet, area] = range;
  std::int64_t count = std::int64_t{area.Rows()} * area.Columns();
  sheet->VisitUsed(area, [&](std::int32_t, std::int32_t, const CellView& cell) {
    if (!cell.IsText() || !cell.AsText().empty()) --count;
  });
  return Value::Number(static_cast<double>(count));
}

Value CallMedian(const BuiltinCall& call) {
  std::vector<double> numbers;
  const Value fault = VisitNumbers(call, [&](double number) { numbers.push_back(number); });
  if (fault.IsError()) return fault;
  if (numbers.empty()) return Value::Error(xlerrNum);
  const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
  std::nth_element(numbers.begin(), middle, numbers.end());
  if (numbers.size() % 2 == 1) return Value::Number(*middle);
  return NumberResult((*std::max_element(numbers.begin(), middle) + *middle) / 2);
}

// The k-th number from the greatest or least on; k is cut off.
template <bool isFromGreatest>
Value CallRanked(const BuiltinCall& call) {
  std::vector<double> numbers;
  const Value fault = VisitNumbers(call.operands[0], call.context, [&](double number) { numbers.push_back(number); });
  if (fault.IsError()) return fault;
  const Value ranks[] = {ScalarOperand(call, 1)};
  if (ranks[0].IsArray()) std::sort(numbers.begin(), numbers.end());
  return BroadcastNumbers(ranks, call.context.marks, [&](const double* rank) {
    if (!(*rank >= 1 && *rank < static_cast<double>(numbers.size()) + 1)) return Value::Error(xlerrNum);
    const auto k = static_cast<std::size_t>(*rank);
    const auto place = numbers.begin() + static_cast<std::ptrdiff_t>(isFromGreatest ? numbers.size() - k : k - 1);
    if (!ranks[0].IsArray()) std::nth_element(numbers.begin(), place, numbers.end());
    return Value::Number(*place);
  });
}

// The part of an operand that holds anything, as an array: beyond it all is 0.
Value UsedPart(const Value& operand, const Workbooks& workbooks, std::int32_t& rows, std::int32_t& columns) {
  rows = columns = 1;
  if (operand.IsReference()) {
    Range range;
    if (Value fault = ReadRange(operand, workbooks, range); fault.IsError()) return fault;
    auto& [sheet, area] = range;
    rows = area.Rows();
    columns = area.Columns();
    const auto used = sheet->UsedArea();
    area.lastRow = std::min(area.lastRow, std::max(area.firstRow, used ? used->lastRow : 0));
    return Value::OfArray(sheet->ReadArray(area));
  }
  if (operand.IsArray()) {
    rows = operand.AsArray()->Rows();
    columns = operand.AsArray()->Columns();
  }
  return operand;
}

// What is no number counts as 0.
Value CallSumproduct(const BuiltinCall& call) {
  std::vector<double> products;
  std::int32_t rows = 0, columns = 0;
  for (std::size_t i = 0; i < call.operands.size(); ++i) {
    std::int32_t itsRows = 1, itsColumns = 1;
    const Value part = UsedPart(call.operands[i], *call.context.workbooks, itsRows, itsColumns);
    if (part.IsError()) return part;
    if (i > 0 && (itsRows != rows || itsColumns != columns)) return Value::Error(xlerrValue);
    rows = itsRows;
    columns = itsColumns;
    const CellView single = part.IsArray() ? CellView() : part.AsCell();
    const auto cells = part.IsArray() ? part.AsArray()->Cells() : std::span(&single, 1);
    for (const CellView& cell : cells)
      if (cell.IsError()) return Value::OfCell(cell);
    if (i == 0) products.assign(cells.size(), 1);
    products.resize(std::min(products.size(), cells.size()));
    for (std::size_t at = 0; at < products.size(); ++at)
      products[at] *= cells[at].IsNumber() ? cells[at].AsNumber() : 0;
  }
  double total = 0;
  for (const double product : products) total += product;
  return NumberResult(total);
}

bool IsSubtotal(const FormulaCell* cell) {
  bool found = false;
  if (cell)
    VisitNodes(cell->formula.Root(), [&](const FormulaNode& node) {
      found = found || (node.kind == FormulaNode::Kind::kCall && (EqualsIgnoringCase(node.name, XTEXT("SUBTOTAL")) ||
                                                                  EqualsIgnoringCase(node.name, XTEXT("AGGREGATE"))));
    });
  return found;
}

// Calls `visitor(const CellView&)` for each cell that is no subtotal itself and that no filter hides and, where those
// do not count, in no hidden row.
template <typename Visitor>
Value VisitSubtotalled(const BuiltinCall& call, bool countsHidden, Visitor&& visitor) {
  for (const Value& operand : call.operands.subspan(1)) {
    if (!operand.IsReference()) return operand.IsError() ? operand : Value::Error(xlerrValue);
    const Sheet* sheet = call.context.workbooks->FindSheet(operand.AsReference().sheet);
    if (!sheet) return Value::Error(xlerrRef);
    FirstError error;
    for (const Area& area : operand.AsReference().areas)
      sheet->VisitUsed(area, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
        const bool isLeft = countsHidden ? sheet->IsRowFiltered(row) : sheet->IsRowHidden(row);
        if (isLeft || IsSubtotal(sheet->FindFormula({row, column}))) return;
        if (cell.IsError()) error.Note({row, column}, cell);
        visitor(cell);
      });
    if (Value fault = error.Result(); fault.IsError()) return fault;
  }
  return {};
}

Value Subtotal(const BuiltinCall& call, std::int32_t function) {
  const bool countsHidden = function < 100;
  function %= 100;
  std::int64_t numbers = 0, filled = 0;
  const auto walk = [&](auto&& visitor) {
    return VisitSubtotalled(call, countsHidden, [&](const CellView& cell) {
      ++filled;
      if (!cell.IsNumber()) return;
      ++numbers;
      visitor(cell.AsNumber());
    });
  };
  switch (function) {
    case 2:
    case 3: {
      // Errors spoil no count; what is no reference does.
      for (const Value& operand : call.operands.subspan(1))
        if (!operand.IsReference()) return operand.IsError() ? operand : Value::Error(xlerrValue);
      walk([](double) {});
      return Value::Number(static_cast<double>(function == 2 ? numbers : filled));
    }
    case 7:
    case 8:
      return Spreading({function == 7, true}, walk);
    case 10:
    case 11:
      return Spreading({function == 10, false}, walk);
    default:
      break;
  }
  constexpr Aggregate kKinds[] = {Aggregate::kAverage, {}, {}, Aggregate::kGreatest, Aggregate::kLeast,
                                  Aggregate::kProduct, {}, {}, Aggregate::kSum};
  return Aggregated(kKinds[function - 1], walk);
}

// 1 to 11 count hidden rows, 101 to 111 do not; rows that a filter hides count for none.
Value CallSubtotal(const BuiltinCall& call) {
  const Value functions[] = {ScalarOperand(call, 0)};
  return Broadcast(functions, [&](std::span<const CellView> cells) {
    std::int32_t function = 0;
    if (Value fault = ToWholeNumber(cells[0], call.context.marks, function); fault.IsError()) return fault;
    const bool isKnown = function % 100 >= 1 && function % 100 <= 11 && function / 100 <= 1;
    return isKnown ? Subtotal(call, function) : Value::Error(xlerrValue);
  });
}

constexpr Builtin kAggregateBuiltins[] = {
    {XTEXT("AVERAGE"), 1, kXlMaxArguments, CallAggregate<Aggregate::kAverage>, "r"},
    {XTEXT("COUNT"), 1, kXlMaxArguments, CallCount, "r"},
    {XTEXT("COUNTA"), 1, kXlMaxArguments, CallCounta, "r"},
    {XTEXT("COUNTBLANK"), 1, 1, CallCountblank, "r"},
    {XTEXT("LARGE"), 2, 2, CallRanked<true>, "rv"},
    {XTEXT("MAX"), 1, kXlMaxArguments, CallAggregate<Aggregate::kGreatest>, "r"},
    {XTEXT("MEDIAN"), 1, kXlMaxArguments, CallMedian, "r"},
    {XTEXT("MIN"), 1, kXlMaxArguments, CallAggregate<Aggregate::kLeast>, "r"},
    {XTEXT("PRODUCT"), 1, kXlMaxArguments, CallAggregate<Aggregate::kProduct>, "r"},
    {XTEXT("SMALL"), 2, 2, CallRanked<false>, "rv"},
    {XTEXT("STDEV"), 1, kXlMaxArguments, CallSpread<true, true>, "r"},
    {XTEXT("STDEV.P"), 1, kXlMaxArguments, CallSpread<false, true>, "r"},
    {XTEXT("STDEV.S"), 1, kXlMaxArguments, CallSpread<true, true>, "r"},
    {XTEXT("STDEVP"), 1, kXlMaxArguments, CallSpread<false, true>, "r"},
    {XTEXT("SUBTOTAL"), 2, kXlMaxArguments, CallSubtotal, "vr"},
    {XTEXT("SUM"), 1, kXlMaxArguments, CallAggregate<Aggregate::kSum>, "r"},
    {XTEXT("SUMPRODUCT"), 1, kXlMaxArguments, CallSumproduct, "a"},
    {XTEXT("SUMSQ"), 1, kXlMaxArguments, CallAggregate<Aggregate::kSquares>, "r"},
    {XTEXT("VAR"), 1, kXlMaxArguments, CallSpread<true, false>, "r"},
    {XTEXT("VAR.P"), 1, kXlMaxArguments, CallSpread<false, false>, "r"},
    {XTEXT("VAR.S"), 1, kXlMaxArguments, CallSpread<true, false>, "r"},
    {XTEXT("VARP"), 1, kXlMaxArguments, CallSpread<false, false>, "r"}};

}  // namespace

std::span<const Builtin> AggregateBuiltins() { return kAggregateBuiltins; }

}  // namespace qcalc
