// The text functions by regular expressions, against a slow and plain model of their rules: what a random call must
// give, worked out place by place by the library itself. Of the add-in it shares the library's types alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>

#include "host/values/conversion.h"
#include "tests/models/field_calls.h"
#include "tests/models/random_calls.h"
#include "tests/models/text/plain_regex.h"

namespace qcalc::text {
namespace {

using models::FieldCall;
using models::Grid;

/// T the texts, X the expressions, F the formats, S the numbers to sum, N which match, C whether case counts, P whether
/// a part will do.
struct Function {
  XStringView name, operands;
};
constexpr Function kFunctions[] = {{XTEXT("Rgx.ISLIKE"), XTEXT("TXCP")},      {XTEXT("Rgx.FIND"), XTEXT("XTNC")},
                                   {XTEXT("Rgx.LEN"), XTEXT("XTNC")},         {XTEXT("Rgx.MID"), XTEXT("TXNC")},
                                   {XTEXT("Rgx.SUBSTITUTE"), XTEXT("TXFNC")}, {XTEXT("Rgx.COUNTIF"), XTEXT("TXC")},
                                   {XTEXT("Rgx.SUMIF"), XTEXT("TXSC")}};
constexpr XStringView kFormats =
    XTEXT("x $& $1 [$2] $` $' ${1} $$ $+ \\n \\u \\U \\L$1 \\E $ \\ é $0 ${ \\x41 \\1 (?1a:b)");

const Function& FunctionOf(XStringView name) {
  return *std::find_if(std::begin(kFunctions), std::end(kFunctions),
                       [&](const Function& one) { return one.name == name; });
}

/// One of cells that meet others: a single row or column goes with all of them.
const CellView* Met(const Grid& cells, std::int32_t row, std::int32_t column) {
  if (cells.rows == 1) row = 0;
  if (cells.columns == 1) column = 0;
  return row < cells.rows && column < cells.columns ? &cells.At(row, column) : nullptr;
}

class Model {
 public:
  explicit Model(const FieldCall& call) : call_(call), operands_(FunctionOf(call.function).operands) {}

  Value Expected() {
    const std::int32_t nth = Number('N', Is('F') ? 0 : 1);
    const bool isMid = operands_ == XTEXT("TXNC");
    if (texts_.rows == 0 || expressions_.rows == 0 || (Is('S') && Cells('S').rows == 0))
      return Value::Error(xlerrValue);
    if (nth < (isMid || Is('F') ? 0 : 1)) return Value::Error(xlerrValue);
    if (operands_[2] == 'S' || operands_ == XTEXT("TXC")) return Total();
    Grid places{std::max({texts_.rows, expressions_.rows, formats_.rows}),
                std::max({texts_.columns, expressions_.columns, formats_.columns}),
                {}};
    std::vector<std::vector<CellView>> all;
    std::size_t width = 1;
    for (std::int32_t row = 0; row < places.rows; ++row)
      for (std::int32_t column = 0; column < places.columns; ++column) {
        all.push_back(AtPlace(row, column, nth));
        width = std::max(width, all.back().size());
      }
    // All matches of a text are a row.
    if (isMid && nth == 0) places = {static_cast<std::int32_t>(all.size()), static_cast<std::int32_t>(width), {}};
    for (std::vector<CellView>& cells : all) {
      cells.resize(width, CellView::Text(XTEXT("")));
      places.cells.insert(places.cells.end(), cells.begin(), cells.end());
    }
    return places.Result();
  }

 private:
  bool Is(char what) const { return operands_.find(static_cast<XCHAR>(what)) != XStringView::npos; }
  std::int32_t Number(char what, std::int32_t leftOut) const {
    return Is(what) ? call_.Number(operands_.find(static_cast<XCHAR>(what)), leftOut) : leftOut;
  }
  /// A format that is left out is an empty one.
  Grid Cells(char what) const {
    const std::size_t at = operands_.find(static_cast<XCHAR>(what));
    return what == 'F' && (!Is('F') || call_.operands[at].IsMissing()) ? Grid{1, 1, {CellView()}} : call_.Cells(at);
  }
  const XString& Keep(XString text) { return kept_.emplace_back(std::move(text)); }
  const XString& TextOf(const CellView& cell) { return Keep(ToText(cell, {}).AsText()); }

  std::vector<CellView> AtPlace(std::int32_t row, std::int32_t column, std::int32_t nth) {
    const CellView *given = Met(texts_, row, column), *expression = Met(expressions_, row, column);
    if (!given || !expression) return {CellView::Error(xlerrNA)};
    for (const CellView* cell : {given, expression})
      if (cell->IsError()) return {*cell};
    const auto regex = Compile(TextOf(*expression), Number('C', 0) != 0);
    if (!regex) return {CellView::Error(xlerrValue)};
    const CellView* const format = Met(formats_, row, column);
    if (!format || format->IsError()) return {format ? *format : CellView::Error(xlerrNA)};
    const XString &text = TextOf(*given), &form = TextOf(*format);
    const std::vector<PlainMatch> matches = AllMatches(*regex, text);
    if (Is('P')) return {CellView::Boolean(Number('P', 0) != 0 ? !matches.empty() : boost::regex_match(text, *regex))};
    if (nth == 0 && Is('F')) return {CellView::Text(Keep(boost::regex_replace(text, *regex, form)))};
    std::vector<CellView> parts;
    for (const PlainMatch& match : matches) parts.push_back(CellView::Text(Keep(match.str())));
    if (nth == 0) return parts;
    if (static_cast<std::size_t>(nth) > matches.size())
      return {Is('F') ? CellView::Text(text) : CellView::Error(xlerrNA)};
    const PlainMatch& match = matches[static_cast<std::size_t>(nth) - 1];
    const auto place = static_cast<std::size_t>(match[0].first - text.data()), behind = place + match[0].length();
    if (call_.function.ends_with(XTEXT("FIND"))) return {CellView::Number(static_cast<double>(place + 1))};
    if (call_.function.ends_with(XTEXT("LEN"))) return {CellView::Number(static_cast<double>(match.length()))};
    if (!Is('F')) return {parts[static_cast<std::size_t>(nth) - 1]};
    const XString formatted = match.format(form, boost::regex_constants::format_perl, *regex);
    return {CellView::Text(Keep(text.substr(0, place) + formatted + text.substr(behind)))};
  }

  /// How many texts match, or the sum of what stands in their places.
  Value Total() {
    const auto regex = Compile(TextOf(expressions_.cells[0]), Number('C', 0) != 0);
    if (!regex) return Value::Error(xlerrValue);
    double total = 0;
    const Grid numbers = Is('S') ? Cells('S') : Grid();
    for (std::size_t place = 0; place < texts_.cells.size(); ++place) {
      const CellView& text = texts_.cells[place];
      if (text.IsError() || AllMatches(*regex, TextOf(text)).empty()) continue;
      if (!Is('S') || numbers.cells[place].IsNumber()) total += Is('S') ? numbers.cells[place].AsNumber() : 1;
    }
    return Value::Number(total);
  }

  const FieldCall& call_;
  XStringView operands_;
  Grid texts_ = Cells('T'), expressions_ = Cells('X'), formats_ = Cells('F');
  std::deque<XString> kept_;
};

class CallMaker : private models::FieldDraws {
 public:
  CallMaker(std::uint64_t number, std::span<const CellView> values) : FieldDraws(number, values) {}

  FieldCall Make() {
    const Function& function = Pick(kFunctions);
    call_.function = function.name;
    const bool isTotal = function.operands == XTEXT("TXC") || function.operands[2] == 'S';
    for (const XCHAR what : function.operands) {
      Value operand;
      if (what == 'T' || what == 'S') operand = DrawCells(DrawArea(rows_, columns_));
      if (what == 'X') operand = DrawTexts(isTotal, [&] { return DrawExpression(*this); });
      if (what == 'F')
        operand =
            DrawTexts(false, [&] { return XString(DrawWord(*this, kFormats)) + XString(DrawWord(*this, kFormats)); });
      if (what == 'N') operand = Value::Number(Chance(3) ? -1 : Below(4) + (Chance(10) ? 0.5 : 0));
      if (what == 'C' || what == 'P') operand = PickOf({Value::Boolean(true), Value::Boolean(false), Value::Number(2)});
      call_.operands.push_back(Chance(what == 'T' || what == 'X' || what == 'S' ? 1 : 25) ? Value::Missing() : operand);
    }
    return std::move(call_);
  }

 private:
  /// One, or several in the shape of the texts, in a row or a column of it, or in any other; cells of the field.
  template <typename Text>
  Value DrawTexts(bool isOne, Text&& text) {
    if (isOne || Chance(65)) return Value::Text(text());
    if (Chance(30)) return DrawCells(DrawArea(1, Chance(50)));
    std::deque<XString> kept;
    return Grid::Of(Chance(50) ? rows_ : 1 + Below(3), Chance(50) ? columns_ : 1 + Below(3),
                    [&](std::int32_t, std::int32_t) { return CellView::Text(kept.emplace_back(text())); })
        .Result();
  }

  std::int32_t rows_ = Chance(40) ? 1 : 1 + Below(std::min(call_.field->Rows(), 30));
  std::int32_t columns_ = Chance(60) ? 1 : 1 + Below(std::min(call_.field->Columns(), 3));
};

FieldCall Draw(std::uint64_t number) {
  models::Draws draws(models::TheRun().settings.seed + 1, number);
  std::deque<XString> texts;
  std::vector<CellView> values = {
      CellView::Number(1), CellView::Number(-12),   CellView::Number(21.5), CellView::Boolean(true),
      CellView(),          CellView::Error(xlerrNA)};
  while (values.size() < 30)
    values.push_back(CellView::Text(texts.emplace_back(draws.Chance(90) ? DrawText(draws) : DrawExpression(draws))));
  return CallMaker(number, values).Make();
}

TEST(TextModels, Expressions) {
  models::TryFieldCalls(Draw, [](const FieldCall& call) { return Model(call).Expected(); });
}

}  // namespace
}  // namespace qcalc::text
