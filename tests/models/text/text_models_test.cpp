// The functions that split, group, pad, reverse and join texts, against slow and plain models of their rules: what a
// random call must give. They share nothing with the add-in but the library of regular expressions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <string_view>

#include "host/text/utf8.h"
#include "host/values/conversion.h"
#include "tests/models/field_calls.h"
#include "tests/models/random_calls.h"
#include "tests/models/text/plain_regex.h"

namespace qcalc::text {
namespace {

using models::FieldCall;
using models::Grid;
using Texts = std::vector<XString>;

const Value kValueError = Value::Error(xlerrValue);

const std::vector<CellView> kValues = models::CellsIn(
    R"({"a,,b","x1.25y","ab12cd345",",",""," é;B ;","a"U+000A"b","Z"," a ",""U+D83D",1"U+DE00,"12345",1,-20.5,1e20,0.25,TRUE,)"
    "FALSE,empty,empty,#N/A}");
// Of CONCAT.RANGE a single error is all that is left.
constexpr std::size_t kErrors = 1;

XString TextOf(const CellView& cell) { return ToText(cell, {}).AsText(); }

Texts Tokens(const XString& text, const XString& delimiters, bool isCompressed) {
  Texts tokens(1);
  for (const XCHAR unit : text)
    if (delimiters.find(unit) != XString::npos)
      tokens.emplace_back();
    else
      tokens.back() += unit;
  if (isCompressed) std::erase(tokens, XString());
  return tokens;
}

/// An error among texts stands for a token, whichever is wanted.
Value ExpectedSplit(const FieldCall& call) {
  Grid cells = call.Cells(0);
  if (cells.rows == 0 || (cells.rows > 1 && cells.columns > 1)) return kValueError;
  if (cells.cells.size() == 1 && cells.cells[0].IsError()) return Value::OfCell(cells.cells[0]);
  const bool isAcross = cells.columns > 1;
  XString delimiters;
  for (const CellView& cell : call.Cells(1).cells) delimiters += TextOf(cell);
  if (call.operands[1].IsMissing()) delimiters = XTEXT(" ");
  const std::int32_t count = call.Number(2, 0);
  const std::size_t wanted = static_cast<std::size_t>(std::abs(count));
  std::vector<Texts> lines;
  std::size_t width = 0;
  for (const CellView& cell : cells.cells) {
    lines.push_back(cell.IsError() ? Texts{XString()} : Tokens(TextOf(cell), delimiters, call.Number(3, 1) != 0));
    width = std::max(width, lines.back().size());
  }
  if (width == 0) return kValueError;
  const Grid result =
      Grid::Of(static_cast<std::int32_t>(lines.size()),
               static_cast<std::int32_t>(count == 0  ? width
                                         : count > 0 ? 1
                                                     : wanted),
               [&](std::int32_t row, std::int32_t column) {
                 const CellView& cell = cells.cells[static_cast<std::size_t>(row)];
                 if (cell.IsError() && column == 0) return cell;
                 const Texts& tokens = lines[static_cast<std::size_t>(row)];
                 const std::size_t token = count > 0 ? wanted - 1 : static_cast<std::size_t>(column);
                 return CellView::Text(token < tokens.size() ? XStringView(tokens[token]) : XStringView());
               });
  return (isAcross ? result.Turned() : result).Result();
}

XString ClassOf(const CellView& type) {
  constexpr XStringView kClasses[] = {XTEXT("[0-9]"), XTEXT("[A-Za-z]"), XTEXT("[^0-9]"), XTEXT("[0-9.]"),
                                      XTEXT("[^0-9.]")};
  if (type.IsText()) return XString(type.AsText());
  const double number = type.IsNumber() ? std::trunc(type.AsNumber()) : 0;
  return XString(kClasses[number >= 0 && number <= 4 ? static_cast<int>(number) : 0]);
}

Value ExpectedGroups(const FieldCall& call) {
  const XString text = TextOf(call.Cell(0, {}));
  PlainRegex regex;
  try {
    regex.assign(ClassOf(call.Cell(3, {})));
  } catch (const boost::regex_error& error) {
    // The library quotes the expression, whose letters are all of the first 256.
    XString told = XTEXT("#ERROR: ");
    for (const char letter : std::string_view(error.what())) told += static_cast<unsigned char>(letter);
    return Value::Text(told);
  }
  if (text.empty()) return Value::Text({});
  const auto last = static_cast<std::int32_t>(text.size()) - 1;
  const std::int32_t begin = std::clamp(call.Number(4, 1) - 1, 0, last);
  std::int32_t end = call.Number(5, 0) - 1;
  if (end < 0 || end > last) end = last;
  if (begin > end) return kValueError;
  XString walked = text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin + 1));
  const std::int32_t wanted = call.Number(1, 1);
  if (wanted < 0) std::reverse(walked.begin(), walked.end());
  XString kept;
  std::int32_t group = 0;
  bool isInside = false;
  for (const XCHAR unit : walked) {
    const bool wasInside = isInside;
    isInside = boost::regex_match(XString(1, unit), regex);
    if (isInside && !wasInside) ++group;
    if (isInside && (wanted == 0 || group == std::abs(wanted))) kept += unit;
  }
  if (wanted < 0) std::reverse(kept.begin(), kept.end());
  const std::int32_t most = call.Number(2, 0);
  if (most != 0 && kept.size() > static_cast<std::size_t>(std::abs(most)))
    kept = most > 0 ? kept.substr(0, static_cast<std::size_t>(most))
                    : kept.substr(kept.size() - static_cast<std::size_t>(-most));
  return Value::Text(kept);
}

/// Each text as `change` makes it; other cells as they are.
template <typename Change>
Value Changed(Grid cells, Change&& change) {
  std::deque<XString> kept;
  for (CellView& cell : cells.cells)
    if (cell.IsText()) cell = CellView::Text(kept.emplace_back(change(XString(cell.AsText()))));
  return cells.rows == 0 ? kValueError : cells.Result();
}

Value ExpectedPadding(const FieldCall& call) {
  const CellView given = call.Cell(0, CellView::Text(XTEXT(" ")));
  const std::int32_t length = call.Number(2, 0);
  if (!given.IsText() || given.AsText().empty() || length < 0) return kValueError;
  const auto size = static_cast<std::size_t>(length);
  XString padding;
  while (padding.size() < size) padding += given.AsText();
  const bool isAtEnd = call.Number(3, 0) != 0;
  return Changed(call.Cells(1), [&](const XString& text) {
    if (text.size() >= size) return isAtEnd ? text.substr(0, size) : text.substr(text.size() - size);
    const std::size_t missing = size - text.size();
    return isAtEnd ? text + padding.substr(0, missing) : padding.substr(padding.size() - missing) + text;
  });
}

Value ExpectedReversal(const FieldCall& call) {
  const std::int32_t count = call.Number(1, 0);
  const auto size = static_cast<std::size_t>(std::abs(count));
  return Changed(call.Cells(0), [&](XString text) {
    if (count != 0 && size < text.size()) text = count > 0 ? text.substr(text.size() - size) : text.substr(0, size);
    std::reverse(text.begin(), text.end());
    return text;
  });
}

Value ExpectedJoin(const FieldCall& call) {
  const Grid cells = call.Cells(0);
  if (cells.rows == 0) return kValueError;
  const Value tooLong = Value::Text(XTEXT("#ERROR: String is too long"));
  const CellView blank = call.Cell(3, CellView::Boolean(false));
  XString joined = TextOf(call.Cell(4, {}));
  bool isFirst = true;
  for (const CellView& cell : cells.cells) {
    if (cell.IsError()) return Value::OfCell(cell);
    XString item = TextOf(cell);
    // The one format that is drawn.
    if (cell.IsNumber() && !call.operands[2].IsMissing()) {
      char digits[40];
      std::snprintf(digits, sizeof digits, "%.2f", cell.AsNumber());
      item = *FromUtf8(digits);
    }
    if (item.empty() && blank.IsText())
      item = XString(blank.AsText());
    else if (item.empty() && call.Number(3, 0) != 0)
      continue;
    joined += (isFirst ? XString() : TextOf(call.Cell(1, {}))) + item;
    isFirst = false;
    if (joined.size() > kXlMaxText) return tooLong;
  }
  joined += TextOf(call.Cell(5, {}));
  return joined.size() > kXlMaxText ? tooLong : Value::Text(joined);
}

using Model = Value(const FieldCall& call);

/// T texts, L a line of them or a table, 1 a text; D delimiters, P padding, J what joins, F a format, G a class, N a
/// number, S a size, B a flag, R a replacement of blanks.
struct Function {
  XStringView name, operands;
  Model* model;
};
constexpr Function kFunctions[] = {{XTEXT("SPLIT.TEXT"), XTEXT("LDNB"), ExpectedSplit},
                                   {XTEXT("GROUPS"), XTEXT("1NNGNN"), ExpectedGroups},
                                   {XTEXT("PAD.TEXT"), XTEXT("PTSB"), ExpectedPadding},
                                   {XTEXT("REVERSE.TEXT"), XTEXT("TN"), ExpectedReversal},
                                   {XTEXT("CONCAT.RANGE"), XTEXT("TJFRJJ"), ExpectedJoin}};

class CallMaker : private models::FieldDraws {
 public:
  explicit CallMaker(std::uint64_t number)
      : FieldDraws(number, std::span(kValues).first(std::size(kValues) - (number % 3 == 0 ? 0 : kErrors))) {}

  FieldCall Make(const Function& function) {
    call_.function = function.name;
    for (const XCHAR what : function.operands) call_.operands.push_back(Draw(static_cast<char>(what)));
    return std::move(call_);
  }

 private:
  Value Draw(char what) {
    const auto text = [](XStringView units) { return Value::Text(XString(units)); };
    const bool isNeeded = what == '1' || what == 'S';
    if (!isNeeded && Chance(what == 'T' || what == 'L' ? 2 : 25)) return Value::Missing();
    if (what == 'T') return DrawCells(DrawArea());
    if (what == 'L') return DrawCells(Chance(2) ? DrawArea() : Chance(50) ? DrawArea(1) : DrawArea(0, 1));
    if (what == '1') return text(XTEXT("a") + DrawText(*this));
    if (what == 'D' && Chance(20)) return Grid{2, 1, {CellView::Text(XTEXT(",;")), CellView::Number(1)}}.Result();
    if (what == 'D') return text(DrawWord(*this, XTEXT(", ,; 1a  aé;")));
    if (what == 'P') return Chance(90) ? text(DrawWord(*this, XTEXT("ab 0 -é_"))) : DrawCells(DrawArea(1, 1));
    if (what == 'F') return text(XTEXT("0.00"));
    if (what == 'G') return Chance(40) ? text(DrawExpression(*this)) : Value::Number(Below(7) - 1);
    if (what == 'S') return Value::Number(Chance(95) ? Below(12) : -1);
    if (what == 'N') return Value::Number(Below(12) - 4);
    if (what == 'B' || (what == 'R' && Chance(50)))
      return PickOf({Value::Boolean(true), Value::Boolean(false), Value::Number(2)});
    return what == 'J' && Chance(20) ? Value::Number(1.5) : text(DrawWord(*this, XTEXT(",  <é>")));
  }
};

TEST(TextModels, Texts) {
  const auto functionOf = [](std::uint64_t number) -> const Function& {
    return kFunctions[number % std::size(kFunctions)];
  };
  models::TryFieldCalls([&](std::uint64_t number) { return CallMaker(number).Make(functionOf(number)); },
                        [](const FieldCall& call) {
                          return std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                              [&](const Function& one) { return one.name == call.function; })
                              ->model(call);
                        });
}

}  // namespace
}  // namespace qcalc::text
