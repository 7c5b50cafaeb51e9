#include <algorithm>

#include "tests/models/random_calls.h"
#include "tests/models/series/model.h"

namespace qcalc::series {
namespace {

const std::vector<CellView> kSmall = models::CellsIn("{0,1,2,3,4,5,7,10,-1,-2,-6,100}");
const std::vector<CellView> kAnySize =
    models::CellsIn("{1e290,-1e290,3e200,1e16,-1e16,123456789.125,1,0.1,-0.3,7e-5,1e-200,-3e-250,0}");
const std::vector<CellView> kOther = models::CellsIn(R"({TRUE,FALSE,empty," 2.5","-1e3",-0.0})");
const std::vector<CellView> kWrong = models::CellsIn(R"({"x","",#N/A,#DIV/0!,"1/2"})");
constexpr std::int32_t kFarN[] = {2'147'483'647, 100'000, -9};
// What can be told of a value that stands alone is what Excel reads in it.
const std::vector<CellView> kNoNumber = models::CellsIn(R"({"x","",#N/A})");

/// Small numbers, or any, with others among them now and then, and one that is none.
std::vector<CellView> DrawValues(std::uint64_t number, int percentOfWrong = 5) {
  models::Draws draws(models::TheRun().settings.seed + 2, number);
  std::vector<CellView> values(200);
  const auto& numbers = draws.Chance(50) ? kSmall : kAnySize;
  const int percentOfOthers = draws.Chance(50) ? 0 : 15;
  for (CellView& value : values) value = draws.Chance(percentOfOthers) ? draws.Pick(kOther) : draws.Pick(numbers);
  if (draws.Chance(percentOfWrong)) draws.Pick(values) = draws.Pick(kWrong);
  return values;
}

class CallMaker : private models::FieldDraws {
 public:
  CallMaker(std::uint64_t number, std::span<const CellView> values) : FieldDraws(number, values) {}

  FieldCall MakeAverages() {
    call_.function = XTEXT("MOVAVG");
    const Area area = DrawArea();
    const std::int32_t size = std::max(area.Rows(), area.Columns());
    const bool isPlain = Chance(70);
    const std::int32_t n = isPlain ? 2 + Below(std::min(size - 2, 40)) : Chance(70) ? Below(size + 3) - 1 : Pick(kFarN);
    call_.operands = {Chance(1) ? Value::Missing() : DrawCells(area), Value::Number(n),
                      Value::Number(1 + Below(Chance(2) ? 8 : 6)), DrawDown(),
                      DrawNumber(-2, Chance(90) ? std::min(area.Rows(), area.Columns()) : size + 1)};
    return std::move(call_);
  }

  FieldCall MakeRunning() {
    const bool isTotal = Chance(50);
    call_.function = isTotal ? XTEXT("ACCUMULATE") : XTEXT("DIFF");
    Value number = DrawNumber(Chance(5) ? -1 : 1, Chance(70) ? 3 : 12);
    if (isTotal && Chance(60)) number = Value::OfCell(Pick(Chance(50) ? kSmall : kAnySize));
    if (Chance(2)) number = Value::OfCell(Pick(kNoNumber));
    call_.operands = {DrawTable(), number, DrawDown()};
    if (isTotal) std::swap(call_.operands[1], call_.operands[2]);
    return std::move(call_);
  }

  FieldCall MakeCorkscrew() {
    call_.function = XTEXT("CORKSCREW");
    call_.operands = {Value::OfCell(Pick(Chance(50) ? kSmall : kAnySize)), DrawTable(), DrawDown()};
    return std::move(call_);
  }

  FieldCall MakeGini() {
    call_.function = XTEXT("GINICOEFF");
    call_.operands = {DrawTable()};
    return std::move(call_);
  }

  FieldCall MakeInterpolation() {
    const bool isLookup = Chance(60);
    call_.function = isLookup ? XTEXT("VLINTERP2") : XTEXT("LINTERP2D");
    isLookup ? DrawLookups() : DrawTwoWays();
    call_.operands.push_back(
        Chance(40) ? Value::Missing() : Value::Number(Below(!isFaulty_ && Chance(3) ? 4 : 3) + (Chance(10) ? 0.5 : 0)));
    return std::move(call_);
  }

 private:
  Value DrawTable() {
    if (Chance(1)) return Value::Missing();
    const Area area = DrawArea();
    if (!Chance(1)) return DrawTallCells(area);
    Reference several = ReferTo(area).AsReference();
    several.areas.push_back(several.areas[0]);
    return Value::OfReference(several);
  }

  Value DrawDown() {
    return PickOf({Value::Missing(), Value::Boolean(true), Value::Boolean(false), Value::Number(0), Value::Number(2)});
  }

  Value DrawNumber(std::int32_t least, std::int32_t most) {
    if (Chance(25)) return Value::Missing();
    const std::int32_t number = least + Below(most - least + 1);
    return Value::Number(number + (Chance(10) ? number < 0 ? -0.75 : 0.75 : 0));
  }

  /// Distinct ones, ascending or descending, none of them near another for its size.
  std::vector<double> DrawCoordinates(std::int32_t count, bool mayDescend) {
    std::vector<double> coordinates;
    double last = Below(2000) - 1000;
    for (std::int32_t i = 0; i < count; ++i) {
      coordinates.push_back(last);
      last += PickOf({Value::Number(1), Value::Number(0.125), Value::Number(0.3), Value::Number(5000)}).AsNumber();
    }
    if (mayDescend && Chance(40)) std::reverse(coordinates.begin(), coordinates.end());
    return coordinates;
  }

  Value DrawBetween(const std::vector<double>& coordinates) {
    const double one = Pick(coordinates), other = Pick(coordinates);
    if (Chance(35)) return Value::Number(one);
    if (Chance(60)) return Value::Number(one + (other - one) * (1 + Below(9)) / 10);
    return Value::Number(one + (Chance(50) ? 1e4 : -1e4) * Below(4));
  }

  CellView DrawAnswer() {
    const double size = Chance(10) ? 1e100 : Chance(50) ? 1 : 1e-3;
    return Chance(5) ? Pick(kOther) : CellView::Number((Below(2001) - 1000) * size);
  }

  void DrawTwoWays() {
    const std::vector<double> rows = DrawCoordinates(1 + Below(Chance(98) ? 9 : 3000), false);
    const std::vector<double> columns = DrawCoordinates(1 + Below(9), false);
    Fill(static_cast<std::int32_t>(rows.size()) + 1, static_cast<std::int32_t>(columns.size()) + 1,
         [&](std::int32_t row, std::int32_t column) {
           if (row == 0 && column == 0) return Chance(50) ? Pick(kWrong) : CellView();
           if (column == 0) return CellView::Number(rows[static_cast<std::size_t>(row) - 1]);
           return row == 0 ? CellView::Number(columns[static_cast<std::size_t>(column) - 1]) : DrawAnswer();
         });
    call_.operands = {DrawBetween(rows), DrawBetween(columns), WholeField()};
    const int wrong = Chance(4) ? Below(3) : 3;
    if (wrong < 3) call_.operands[static_cast<std::size_t>(wrong)] = Value::Missing();
    if (wrong < 2 && Chance(50)) call_.operands[static_cast<std::size_t>(wrong)] = Value::OfCell(Pick(kNoNumber));
  }

  void DrawLookups() {
    const std::vector<double> keys = DrawCoordinates(1 + Below(Chance(98) ? 12 : 20'000), true);
    const std::int32_t columns = 1 + Below(5), key = Chance(60) ? 0 : Below(columns);
    static const std::vector<CellView> labels = models::CellsIn(R"({"Key","Größe","a b","10 %","Z"})");
    static const std::vector<CellView> alike = models::CellsIn(R"({"kEY","GRößE","A B","10 %","z"})");
    static const std::vector<CellView> noColumns = models::CellsIn(R"({0,-1,6,"nowhere"})");
    const bool isLabelled = Chance(40);
    Fill(static_cast<std::int32_t>(keys.size()) + isLabelled, columns, [&](std::int32_t row, std::int32_t column) {
      if (isLabelled && row == 0) return labels[static_cast<std::size_t>(column)];
      return column == key ? CellView::Number(keys[static_cast<std::size_t>(row - isLabelled)]) : DrawAnswer();
    });
    const auto name = [&](std::int32_t column) {
      return isLabelled && Chance(60)
                 ? Chance(50) ? labels[static_cast<std::size_t>(column)] : alike[static_cast<std::size_t>(column)]
                 : CellView::Number(column + 1);
    };
    Grid answers = Grid::Of(1, 1 + Below(3), [&](std::int32_t, std::int32_t) { return name(Below(columns)); });
    // Without a label anywhere there is no header.
    answers.cells[0] = isLabelled ? alike[static_cast<std::size_t>(Below(columns))] : answers.cells[0];
    const bool isDefault = !isLabelled && Chance(20), isWrong = Chance(3);
    isFaulty_ = isWrong || (isDefault && columns < 2);
    if (isWrong) answers.cells[0] = Pick(noColumns);
    const Grid values = Grid::Of(1 + Below(4), 1 + Below(2), [&](std::int32_t, std::int32_t) {
      return !isFaulty_ && Chance(1) ? Pick(kNoNumber) : DrawBetween(keys).AsCell();
    });
    call_.operands = {Chance(1) ? Value::Missing() : values.Result(), WholeField(),
                      isDefault ? Value::Missing() : answers.Result(),
                      key == 0 && Chance(50) ? Value::Missing() : Value::OfCell(name(key))};
  }

  template <typename Make>
  void Fill(std::int32_t rows, std::int32_t columns, Make&& make) {
    const Grid cells = Grid::Of(rows, columns, make);
    ArrayBuilder field(rows, columns);
    for (std::int32_t row = 0; row < rows; ++row)
      for (std::int32_t column = 0; column < columns; ++column) field.Set(row, column, cells.At(row, column));
    PutField(field.Finish());
  }

  Value WholeField() { return DrawTallCells(Area::OfSize(0, 0, call_.field->Rows(), call_.field->Columns())); }

  bool isFaulty_ = false;  ///< which fault would be told of first is not said
};

}  // namespace

FieldCall DrawAverages(std::uint64_t number) { return CallMaker(number, DrawValues(number)).MakeAverages(); }
FieldCall DrawRunning(std::uint64_t number) { return CallMaker(number, DrawValues(number)).MakeRunning(); }
FieldCall DrawCorkscrew(std::uint64_t number) { return CallMaker(number, DrawValues(number)).MakeCorkscrew(); }
FieldCall DrawInterpolation(std::uint64_t number) { return CallMaker(number, kSmall).MakeInterpolation(); }

FieldCall DrawGini(std::uint64_t number) {
  std::vector<CellView> values = DrawValues(number, 15);
  // Those below 0 are told of, once they have been tried.
  if (number % 8 != 0)
    std::erase_if(values, [](const CellView& cell) { return cell.IsNumber() && cell.AsNumber() < 0; });
  return CallMaker(number, values).MakeGini();
}

}  // namespace qcalc::series
