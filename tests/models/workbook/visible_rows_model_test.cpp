// The rows of a table that are not hidden, against a slow and plain model of the rules: what a random call must give.
// It shares nothing with the add-in.
#include <gtest/gtest.h>

#include "tests/models/field_calls.h"
#include "tests/models/random_calls.h"

namespace qcalc::workbook {
namespace {

using models::FieldCall;
using models::Grid;

const std::vector<CellView> kCells = models::CellsIn(R"({1,2.5,-3,"a","",TRUE,#N/A,#DIV/0!,empty,"long"})");

class CallMaker : private models::FieldDraws {
 public:
  explicit CallMaker(std::uint64_t number) : FieldDraws(number, kCells) {}

  /// Which rows of the field are hidden goes to `isHidden`.
  FieldCall Make(std::vector<bool>& isHidden) {
    call_.function = XTEXT("FILTER.VISIBLE");
    DrawPlace(50);
    const int percent = 10 * Below(11);
    for (std::int32_t row = 0; row < call_.field->Rows(); ++row) isHidden.push_back(Chance(percent));
    models::TheRun().caller.HideRows(isHidden);
    const Area area = DrawArea();
    call_.operands = {Chance(97)   ? Tall(area)
                      : Chance(50) ? Value::Missing()
                                   : call_.CellsOf(ReferTo(area)).Result(),
                      Chance(40) ? Value::Missing() : DrawCells(Chance(90) ? DrawArea(1, 1) : DrawArea())};
    return std::move(call_);
  }

 private:
  Value Tall(const Area& area) {
    const Value drawn = DrawTallCells(area);
    return drawn.IsReference() ? drawn : ReferTo(area);
  }
};

Value Expected(const FieldCall& call, const std::vector<bool>& isHidden) {
  if (!call.operands[0].IsReference()) return Value::Error(xlerrValue);
  const Grid source = call.Cells(0);
  const Grid pads = call.operands[1].IsMissing() ? Grid{1, 1, {CellView::Error(xlerrNA)}} : call.Cells(1);
  if (pads.cells.size() > 1) return Value::Error(xlerrValue);
  const auto cut = [](std::int32_t calling, std::int32_t size) {
    return calling < 2 || calling >= size ? size : calling;
  };
  Grid result = Grid::Of(cut(call.place.rows, source.rows), cut(call.place.columns, source.columns),
                         [&](std::int32_t, std::int32_t) { return pads.cells[0]; });
  const std::int32_t above = call.operands[0].AsReference().areas[0].firstRow - call.where.areas[0].firstRow;
  auto next = result.cells.begin();
  for (std::int32_t row = 0; row < result.rows; ++row)
    if (!isHidden[static_cast<std::size_t>(row + above)])
      next = std::copy_n(source.Row(row).begin(), result.columns, next);
  return result.Result();
}

TEST(WorkbookModels, VisibleRows) {
  std::vector<bool> isHidden;
  models::TryFieldCalls(
      [&](std::uint64_t number) {
        isHidden.clear();
        return CallMaker(number).Make(isHidden);
      },
      [&](const FieldCall& call) { return Expected(call, isHidden); });
}

}  // namespace
}  // namespace qcalc::workbook
