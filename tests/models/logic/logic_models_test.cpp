// The logical functions on truth values, texts, errors and empty cells, against a slow and plain model of their rules:
// what a random call must give, worked out cell by cell. It shares nothing with the add-in.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/models/field_calls.h"
#include "tests/models/random_calls.h"

namespace qcalc::logic {
namespace {

using models::FieldCall;
using models::Grid;

constexpr std::size_t kArguments = 28;
constexpr XStringView kCombining[] = {XTEXT("AND.CELLS"), XTEXT("OR.CELLS"), XTEXT("AND.ROWS"),
                                      XTEXT("OR.ROWS"),   XTEXT("AND.COLS"), XTEXT("OR.COLS"),
                                      XTEXT("ALL"),       XTEXT("ANY"),      XTEXT("NONE")};

const std::vector<CellView> kTrue =
    models::CellsIn(R"({TRUE,1,"true","TrUe","-3.5",-1e-300," 7 ","2e3",1e300,".5","+1"})");
const std::vector<CellView> kNotTrue = models::CellsIn(
    R"({FALSE,0,"False","0","yes","","  ","-0.0","0e5",empty," true ",-0.0,"$5","1,000","1/2","TRUE1"})");
const std::vector<CellView> kErrors = models::CellsIn(R"({#N/A,#VALUE!,#DIV/0!})");

bool IsTrue(const CellView& cell) {
  return std::any_of(std::begin(kTrue), std::end(kTrue), [&](const CellView& one) { return SameContent(cell, one); });
}

/// What walking over cells comes to: the first error or cell that decides, else the start. AND decides by what is not
/// true.
CellView Combined(const std::vector<CellView>& cells, bool isAnd) {
  for (const CellView& cell : cells) {
    if (cell.IsError()) return cell;
    if (IsTrue(cell) != isAnd) return CellView::Boolean(!isAnd);
  }
  return CellView::Boolean(isAnd);
}

/// Columns are rows of what is turned.
Value ExpectedCombination(const FieldCall& call) {
  const bool isAnd = call.function.starts_with(XTEXT("A")) && call.function != XTEXT("ANY");
  const bool isByRows = call.function.ends_with(XTEXT("ROWS")), isByColumns = call.function.ends_with(XTEXT("COLS"));
  const bool isCells = call.function.ends_with(XTEXT("CELLS"));
  std::vector<Grid> grids;
  for (const Value& operand : call.operands)
    if (!operand.IsMissing()) grids.push_back(isByColumns ? call.CellsOf(operand).Turned() : call.CellsOf(operand));
  if (call.operands[0].IsMissing()) return Value::Error(xlerrValue);
  if (!isByRows && !isByColumns && !isCells) {
    std::vector<CellView> all;
    for (const Grid& grid : grids) all.insert(all.end(), grid.cells.begin(), grid.cells.end());
    const CellView result = Combined(all, isAnd);
    const bool isTurned = call.function == XTEXT("NONE") && !result.IsError();
    return isTurned ? Value::Boolean(!result.AsBoolean()) : Value::OfCell(result);
  }
  for (const Grid& grid : grids)
    if (grid.rows != grids[0].rows || (isCells && grid.columns != grids[0].columns)) return Value::Error(xlerrValue);
  const auto cut = [](std::int32_t size, std::int32_t calling) { return calling > 1 ? std::min(size, calling) : size; };
  const std::int32_t rows = cut(grids[0].rows, isByColumns ? call.place.columns : call.place.rows);
  const std::int32_t columns = isCells ? cut(grids[0].columns, call.place.columns) : 1;
  const Grid result = Grid::Of(rows, columns, [&](std::int32_t row, std::int32_t column) {
    std::vector<CellView> cells;
    for (const Grid& grid : grids) {
      if (isCells) cells.push_back(grid.At(row, column));
      if (!isCells) cells.insert(cells.end(), grid.Row(row).begin(), grid.Row(row).end());
    }
    return Combined(cells, isAnd);
  });
  return (isByColumns ? result.Turned() : result).Result();
}

Value ExpectedReplacement(const FieldCall& call) {
  Grid cells = call.Cells(0);
  if (cells.rows == 0) return Value::Error(xlerrValue);
  for (CellView& cell : cells.cells) {
    const bool isKept = cell.IsError() && ((cell.AsError() == xlerrNA && call.Number(2, 0) != 0) ||
                                           (cell.AsError() == xlerrValue && call.Number(3, 0) != 0));
    if (cell.IsError() && !isKept) cell = call.Cell(1, {});
  }
  return cells.Result();
}

class CallMaker : private models::FieldDraws {
 public:
  CallMaker(std::uint64_t number, std::span<const CellView> values) : FieldDraws(number, values) { DrawPlace(30); }

  FieldCall MakeCombination() {
    call_.function = Pick(kCombining);
    call_.operands.resize(kArguments, Value::Missing());
    const Area first = DrawArea();
    const std::int32_t last = Chance(95) ? Below(4) : Below(kArguments);
    for (std::int32_t argument = 0; argument <= last; ++argument) {
      const bool hasRows = !call_.function.ends_with(XTEXT("COLS")),
                 hasColumns = !call_.function.ends_with(XTEXT("ROWS"));
      // Those of the same row may all reach down to the sheet's end, and have as many rows then as well.
      Area area = DrawArea(hasRows ? first.Rows() : 0, hasColumns ? first.Columns() : 0);
      if (Chance(3)) area = DrawArea();
      if (!Chance(argument == 0 ? 2 : 15)) call_.operands[static_cast<std::size_t>(argument)] = DrawTallCells(area);
    }
    return std::move(call_);
  }

  FieldCall MakeReplacement() {
    call_.function = XTEXT("IFERRORX");
    call_.operands = {Chance(2) ? Value::Missing() : DrawCells(DrawArea()),
                      DrawCells(DrawArea(Chance(80), Chance(80)))};
    for (int flag = 0; flag < 2; ++flag)
      call_.operands.push_back(Chance(40)   ? Value::Missing()
                               : Chance(50) ? Value::Boolean(Chance(50))
                                            : Value::Number(Below(3)));
    return std::move(call_);
  }
};

/// Some kinds of values more than others; now and then one alone among many of another kind.
FieldCall Draw(std::uint64_t number, FieldCall (CallMaker::*make)()) {
  models::Draws draws(models::TheRun().settings.seed + 1, number);
  std::vector<CellView> values(draws.Chance(50) ? 60 : 5'000);
  const int percentOfTrue = draws.Below(3) * 50, percentOfErrors = draws.Chance(60) ? 0 : 10;
  for (CellView& value : values) {
    value = draws.Chance(percentOfTrue) ? draws.Pick(kTrue) : draws.Pick(kNotTrue);
    if (draws.Chance(percentOfErrors)) value = draws.Pick(kErrors);
  }
  draws.Pick(values) = draws.PickOf({Value::Boolean(true), Value::Boolean(false), Value::Error(xlerrNA)}).AsCell();
  return (CallMaker(number, values).*make)();
}

TEST(LogicModels, Combining) {
  models::TryFieldCalls([](std::uint64_t number) { return Draw(number, &CallMaker::MakeCombination); },
                        ExpectedCombination);
}

TEST(LogicModels, Replacing) {
  models::TryFieldCalls([](std::uint64_t number) { return Draw(number, &CallMaker::MakeReplacement); },
                        ExpectedReplacement);
}

}  // namespace
}  // namespace qcalc::logic
