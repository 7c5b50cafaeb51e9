#include <algorithm>

#include "tests/models/shape/model.h"

namespace qcalc::shape {
namespace {

const std::vector<CellView> kMixed = models::CellsIn(
    R"({1,2,-1,0,2.25,-7.5,0,3,"Qty","qTY","2","café","CAFÉ","","true",TRUE,#N/A,empty,#DIV/0!,"#n/a",empty})");
// Halves and the like, whose differences from a mean of equal ones are exactly 0.
const std::vector<CellView> kFigures = models::CellsIn(R"({1,2.5,-4,0.125,7,1e100,"Qty",TRUE,empty,-0.5,1e6,1000003})");
const std::vector<CellView> kItems = models::CellsIn(R"({0,0,0,0.4,-0.0,"QTY",0,1e300,"none",-99,#N/A,TRUE})");

class CallMaker : private models::FieldDraws {
 public:
  CallMaker(std::uint64_t number, std::span<const CellView> values) : FieldDraws(number, values), table_(DrawArea()) {}

  FieldCall MakeSlices() {
    call_.function = XTEXT("SLICES");
    call_.operands = {DrawTable(false)};
    for (const bool isRows : {true, false}) call_.operands.push_back(DrawSelector(isRows));
    return std::move(call_);
  }

  FieldCall MakeReshape() {
    call_.function = Pick(kReshapes);
    const auto is = [&](XStringView name) { return call_.function == name; };
    DrawPlace(is(XTEXT("RESIZE")) || is(XTEXT("PAD.ARRAY")) ? 30 : 10);
    const std::int32_t rows = table_.Rows(), columns = table_.Columns();
    std::vector<Value>& operands = call_.operands;
    operands = {Chance(98) ? DrawCells(table_) : Value::Missing()};
    if (is(XTEXT("RESIZE"))) {
      operands = {DrawTable(false),
                  DrawNumber(-1, rows + 3),
                  DrawNumber(-1, columns + 3),
                  DrawNumber(Chance(96), rows + 2),
                  DrawNumber(Chance(96), columns + 2),
                  DrawFill()};
    } else if (is(XTEXT("PAD.ARRAY"))) {
      operands = {DrawFill(), operands[0], DrawNumber(-1, rows + 3), DrawNumber(-1, columns + 3)};
    } else if (is(XTEXT("SPLICEROWS")) || is(XTEXT("SPLICECOLS"))) {
      const std::int32_t size = is(XTEXT("SPLICEROWS")) ? rows : columns;
      operands = {operands[0], DrawNumber(-2, size + 1), DrawNumber(-2, size + 1),
                  Chance(30) ? Value::Missing() : DrawCells(DrawArea()), DrawFill()};
    } else if (is(XTEXT("SPLICECELLS"))) {
      for (int triple = 0; triple < 5; ++triple)
        for (const std::int32_t most : {rows, columns, 0})
          operands.push_back(Chance(most == 0 ? 50 : 10) ? Value::Missing()
                             : most == 0                 ? DrawCells(DrawArea(Chance(80), Chance(80)))
                             : Chance(1)                 ? DrawCells(DrawArea())
                                                         : DrawNumber(Chance(98) ? 1 : 0, most, Chance(50)));
    } else if (is(XTEXT("UNPIVOT"))) {
      operands = {DrawTable(true), DrawNumber(Chance(5) ? -1 : 0, std::min(columns, 4)),
                  DrawNumber(Chance(5) ? -1 : 0, std::min(rows, 4)), DrawNumber(0, 7)};
    } else if (is(XTEXT("INTERSECT"))) {
      operands = {ReferTo(table_), DrawSelecting()};
    } else {
      for (int number = 0; number < 2; ++number)
        operands.push_back(is(XTEXT("REPEAT")) ? DrawNumber(0, 4)
                                               : PickOf({Value::Missing(), Value::Boolean(true), Value::Boolean(false),
                                                         Value::Number(0), Value::Number(2)}));
    }
    return std::move(call_);
  }

  FieldCall MakeTotals() {
    call_.function = Pick(kTotals);
    call_.operands = {DrawTable(true)};
    const bool isAggregates = call_.function == XTEXT("AGGREGATES");
    if (isAggregates || call_.function.ends_with(XTEXT("TOTALS"))) {
      call_.operands.push_back(isAggregates && Chance(50) ? DrawFunctions() : DrawNumber(Chance(3) ? 0 : 1, 12));
      call_.operands.push_back(isAggregates ? DrawNumber(Chance(3) ? -1 : 0, 2) : DrawFill(false));
    }
    if (call_.function == XTEXT("TOTALS")) return std::move(call_);
    if (call_.function != XTEXT("HTOTALS")) call_.operands.push_back(DrawSelector(true));
    call_.operands.push_back(DrawSelector(false));
    return std::move(call_);
  }

 private:
  Value DrawTable(bool isTall) {
    if (Chance(1)) return Value::Missing();
    if (isTall) return DrawTallCells(table_);
    if (Chance(98)) return DrawCells(table_);
    Reference several = ReferTo(table_).AsReference();
    several.areas.push_back(several.areas[0]);
    return Value::OfReference(several);
  }

  /// Now and then left out, with a fraction, or below 0 where either sign will do.
  Value DrawNumber(std::int32_t least, std::int32_t most, bool isNegative = false) {
    if (Chance(25)) return Value::Missing();
    const std::int32_t number = (least + Below(most - least + 1)) * (isNegative ? -1 : 1);
    return Value::Number(number + (Chance(10) ? number < 0 ? -0.75 : 0.75 : 0));
  }

  Value DrawFill(bool mayBeSeveral = true) {
    if (Chance(30)) return Value::Missing();
    return DrawCells(mayBeSeveral && Chance(10) ? DrawArea() : DrawArea(1, 1));
  }

  Value DrawFunctions() {
    return Grid::Of(1 + Below(3), 1 + Below(3),
                    [&](std::int32_t, std::int32_t) { return CellView::Number(Chance(1) ? 13 : 1 + Below(12)); })
        .Result();
  }

  /// References around the table, to one area or several, now and then on another sheet.
  Value DrawSelecting() {
    Reference all = ReferTo(DrawArea()).AsReference();
    if (call_.function != XTEXT("INTERSECT") && Chance(30))
      all.areas.push_back(ReferTo(DrawArea()).AsReference().areas[0]);
    if (Chance(5)) all.sheet = call_.place.sheet;
    return Value::OfReference(all);
  }

  Value DrawSelector(bool isRows) {
    if (Chance(30)) return Value::Missing();
    // Beside an array a reference is read for what its cells hold: a few of them will do.
    if (Chance(25)) return call_.operands[0].IsReference() ? DrawSelecting() : ReferTo(DrawArea(1, Chance(80)));
    const std::int32_t count = isRows ? table_.Rows() : table_.Columns();
    std::vector<CellView> items(static_cast<std::size_t>(Chance(40) ? 1 : 1 + Below(6)));
    for (CellView& item : items) {
      const std::int32_t number = 1 + Below(count);
      item = Chance(70) ? CellView::Number(Chance(70) ? number : -number) : kItems[Below(Chance(97) ? 7 : 12)];
      if (Chance(20))
        item = call_.field->At(table_.firstRow + (isRows ? Below(table_.Rows()) : 0),
                               table_.firstColumn + (isRows ? 0 : Below(table_.Columns())));
    }
    const auto size = static_cast<std::int32_t>(items.size());
    return Grid{size % 2 == 0 ? 2 : 1, size % 2 == 0 ? size / 2 : size, items}.Result();
  }

  Area table_;
};

}  // namespace

FieldCall DrawSlices(std::uint64_t number) { return CallMaker(number, kMixed).MakeSlices(); }

FieldCall DrawReshape(std::uint64_t number) { return CallMaker(number, kMixed).MakeReshape(); }

FieldCall DrawTotals(std::uint64_t number) {
  return CallMaker(number, number % 4 == 0 ? std::span<const CellView>(kMixed) : kFigures).MakeTotals();
}

}  // namespace qcalc::shape
