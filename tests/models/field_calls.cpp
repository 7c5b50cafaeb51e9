#include "tests/models/field_calls.h"

#include <algorithm>
#include <cmath>

#include "tests/models/random_calls.h"

namespace qcalc::models {
namespace {

// Every so many calls are made on all threads at once, or have a field of many cells, which is read by parts.
constexpr std::uint64_t kParallelEvery = 20, kLargeEvery = 60;
constexpr std::int32_t kLarge = 20'000;
constexpr int kThreads = 8;
constexpr std::size_t kMostTold = 2'000;
constexpr std::int32_t kMostUncutRows = 100'000;

}  // namespace

Value Grid::Result() const {
  if (cells.size() == 1) return Value::OfCell(cells[0]);
  ArrayBuilder array(rows, columns);
  for (std::int32_t row = 0; row < rows; ++row)
    for (std::int32_t column = 0; column < columns; ++column) array.Set(row, column, At(row, column));
  return Value::OfArray(array.Finish());
}

Grid FieldCall::CellsOf(const Value& operand) const {
  if (operand.IsMissing()) return {};
  if (operand.IsArray()) {
    const Array& array = *operand.AsArray();
    return {array.Rows(), array.Columns(), {array.Cells().begin(), array.Cells().end()}};
  }
  if (!operand.IsReference()) return {1, 1, {operand.AsCell()}};
  const Reference& reference = operand.AsReference();
  if (reference.areas.size() > 1) return {};
  Area area = reference.areas[0];
  const Area& all = where.areas[0];
  if (area.Rows() > kMostUncutRows) area.lastRow = all.lastRow;
  return Grid::Of(area.Rows(), area.Columns(), [&](std::int32_t row, std::int32_t column) {
    row += area.firstRow, column += area.firstColumn;
    const bool isInField = reference.sheet == where.sheet && all.Contains(row, column);
    return isInField ? field->At(row - all.firstRow, column - all.firstColumn) : CellView();
  });
}

CellView FieldCall::Cell(std::size_t operand, const CellView& leftOut) const {
  return operands[operand].IsMissing() ? leftOut : Cells(operand).cells[0];
}

std::int32_t FieldCall::Number(std::size_t operand, std::int32_t leftOut) const {
  const CellView cell = Cell(operand, CellView::Number(leftOut));
  return cell.IsBoolean() ? cell.AsBoolean() : static_cast<std::int32_t>(cell.AsNumber());
}

bool Expected::Agrees(const Value& actual, const Tolerance& tolerance) const {
  if (slack.cells.empty() || actual.IsReference()) return SameValue(value, actual, tolerance);
  if (value.IsArray() != actual.IsArray()) return false;
  const FieldCall none;
  const Grid wanted = none.CellsOf(value), given = none.CellsOf(actual);
  if (wanted.rows != given.rows || wanted.columns != given.columns) return false;
  for (std::size_t i = 0; i < given.cells.size(); ++i) {
    const bool areNumbers = wanted.cells[i].IsNumber() && given.cells[i].IsNumber();
    if (!areNumbers && !SameContent(wanted.cells[i], given.cells[i])) return false;
    if (areNumbers && !(std::abs(wanted.cells[i].AsNumber() - given.cells[i].AsNumber()) <= slack.cells[i].AsNumber()))
      return false;
  }
  return true;
}

FieldDraws::FieldDraws(std::uint64_t number, std::span<const CellView> values) : Draws(TheRun().settings.seed, number) {
  const std::int32_t most = number % kLargeEvery == 7 ? kLarge : 0;
  const bool isWide = Chance(30);
  ArrayBuilder field(1 + Below(9) + (isWide ? 0 : Below(most)), 1 + Below(7) + (isWide ? Below(most / 20) : 0));
  for (std::int32_t row = 0; row < field.Rows(); ++row)
    for (std::int32_t column = 0; column < field.Columns(); ++column) field.Set(row, column, Pick(values));
  PutField(field.Finish());
  call_.place = Pick(TheRun().caller.Places());
  call_.place.rows = call_.place.columns = 1;
}

void FieldDraws::PutField(ArrayPtr field) {
  call_.field = std::move(field);
  call_.where = TheRun().caller.PutInSheet(call_.field, 0).AsReference();
}

Area FieldDraws::DrawArea(std::int32_t rows, std::int32_t columns) {
  const std::int32_t mostRows = call_.field->Rows(), mostColumns = call_.field->Columns();
  if (rows == 0) rows = 1 + Below(mostRows);
  if (columns == 0) columns = 1 + Below(mostColumns);
  return Area::OfSize(Below(mostRows - rows + 1), Below(mostColumns - columns + 1), rows, columns);
}

Value FieldDraws::ReferTo(const Area& area) const {
  const Area& all = call_.where.areas[0];
  return Value::OfReference(
      {call_.where.sheet,
       {Area::OfSize(all.firstRow + area.firstRow, all.firstColumn + area.firstColumn, area.Rows(), area.Columns())}});
}

Value FieldDraws::DrawCells(const Area& area) {
  const Value reference = ReferTo(area);
  return Chance(50) ? reference : call_.CellsOf(reference).Result();
}

Value FieldDraws::DrawTallCells(const Area& area) {
  Reference reference = ReferTo(area).AsReference();
  const auto cells = call_.field->Cells();
  const bool isLastRowUsed = std::any_of(cells.end() - call_.field->Columns(), cells.end(),
                                         [](const CellView& cell) { return !cell.IsEmpty(); });
  if (!isLastRowUsed || reference.areas[0].firstRow > kMostUncutRows || !Chance(10)) return DrawCells(area);
  reference.areas[0].lastRow = kXlMaxRows - 1;
  return Value::OfReference(reference);
}

void FieldDraws::DrawPlace(int percent) {
  if (Chance(percent)) call_.place.rows = 1 + Below(11);
  if (Chance(percent)) call_.place.columns = 1 + Below(9);
}

void TryFieldCalls(const std::function<FieldCall(std::uint64_t number)>& draw,
                   const std::function<Expected(const FieldCall& call)>& model, const Tolerance& tolerance) {
  Caller& caller = TheRun().caller;
  TryCalls([&](std::uint64_t number) -> std::string {
    const FieldCall call = draw(number);
    const Expected expected = model(call);
    std::string wrong;
    for (const Value& actual :
         caller.CallOnThreads(number % kParallelEvery == 0 ? kThreads : 1, call.function, call.operands, call.place))
      if (!expected.Agrees(actual, tolerance))
        wrong = "\n  expected " + caller.Print(expected.value).substr(0, kMostTold) + "\n  got      " +
                caller.Print(actual).substr(0, kMostTold);
    wrong = caller.Complaints() + wrong;
    if (wrong.empty()) return "";
    return caller.Describe(call.function, call.operands, call.place).substr(0, kMostTold) + "\n  with " +
           caller.Print(Value::OfArray(call.field)).substr(0, kMostTold) + " in " + caller.DescribeTable() + wrong;
  });
}

}  // namespace qcalc::models
