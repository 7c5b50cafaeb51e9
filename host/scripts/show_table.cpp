#include "host/scripts/show_table.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "host/text/counted.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"
#include "host/values/number_writing.h"

namespace qcalc {
namespace {

constexpr std::size_t kMaxCellWidth = 32;
constexpr std::size_t kMaxWidth = 120;
constexpr std::string_view kGap = "\u22EE";

/// One cell as it stands in the table: one line, in UTF-8, of so many columns of the terminal.
struct ShownCell {
  std::string text;
  std::size_t width = 0;
  bool isRight = false;
};

std::size_t WidthOf(const std::string& text) { return ColumnsOf(*FromUtf8(text)); }

/// As much of the text as a cell has columns for.
std::string TextFor(XStringView text) {
  std::size_t end = 0, width = 0;
  while (end < text.size()) {
    std::size_t next = end;
    TakeCharacter(text, next);
    width += ColumnsOf(text.substr(end, next - end));
    if (width > kMaxCellWidth) break;
    end = next;
  }
  return ToUtf8(ShownText(text.substr(0, end))) + (end < text.size() ? "\u2026" : "");
}

/// Whether a text must stand in quotes to be told from something else: from no text, a number, TRUE, an error.
bool NeedsQuotes(XStringView text) {
  return text.empty() || text.front() == ' ' || text.back() == ' ' || ParseLiteral(ToUtf8(text));
}

ShownCell Show(const CellView& cell) {
  ShownCell shown;
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      break;
    case CellKind::kNumber:
      shown.text = ToUtf8(NumberToText(cell.AsNumber(), {}));
      shown.isRight = true;
      break;
    case CellKind::kText:
      shown.text = NeedsQuotes(cell.AsText()) ? "\"" + TextFor(cell.AsText()) + "\"" : TextFor(cell.AsText());
      break;
    default:
      shown.text = PrintLiteral(cell);
  }
  shown.width = WidthOf(shown.text);
  return shown;
}

ShownCell Number(std::int32_t number) {
  const std::string text = std::to_string(number);
  return {text, text.size(), true};
}

std::string Padded(const ShownCell& cell, std::size_t width) {
  const std::string blanks(width - cell.width, ' ');
  return cell.isRight ? blanks + cell.text : cell.text + blanks;
}

/// 12,345 rows; 1 row.
std::string Counted(std::int32_t count, const char* noun) { return Grouped(count) + " " + NounFor(count, noun); }

/// Which rows are shown: the first ones and, when there are more, the last quarter.
class RowChoice {
 public:
  RowChoice(std::int32_t rows, std::int32_t most)
      : rows_(rows), tail_(rows > most ? most / 4 : 0), head_(std::min(rows, most) - tail_) {}

  std::int32_t Hidden() const { return rows_ - head_ - tail_; }
  std::int32_t Head() const { return head_; }
  std::int32_t Count() const { return head_ + tail_; }
  /// The zero-based row that stands at a zero-based place of the table.
  std::int32_t At(std::int32_t place) const { return place < head_ ? place : place + Hidden(); }

 private:
  std::int32_t rows_;
  std::int32_t tail_;
  std::int32_t head_;
};

/// One column with the number above it, everything as wide as the widest. A number above numbers stands to the right.
std::vector<std::string> ShownColumn(const Array& array, std::int32_t column, const RowChoice& rows) {
  std::vector<ShownCell> cells(1, Number(column + 1));
  for (std::int32_t place = 0; place < rows.Count(); ++place) cells.push_back(Show(array.At(rows.At(place), column)));
  cells[0].isRight = std::any_of(cells.begin() + 1, cells.end(), [](const ShownCell& cell) { return cell.isRight; });
  std::size_t width = 0;
  for (const ShownCell& cell : cells) width = std::max(width, cell.width);
  std::vector<std::string> shown;
  for (const ShownCell& cell : cells) shown.push_back(Padded(cell, width));
  return shown;
}

}  // namespace

std::string ShowTable(const Value& value, std::int32_t maxRows) {
  if (!value.IsArray()) return " " + PrintLiteral(value) + "\n";
  const Array& array = *value.AsArray();
  const RowChoice rows(array.Rows(), maxRows);
  const ShownCell widest = Number(rows.At(rows.Count() - 1) + 1);
  std::vector<std::string> lines(1, std::string(widest.width + 2, ' '));
  for (std::int32_t place = 0; place < rows.Count(); ++place)
    lines.push_back(" " + Padded(Number(rows.At(place) + 1), widest.width) + " ");
  for (std::string& line : lines) line += "\u2502";

  std::size_t width = 0;
  std::int32_t columns = 0;
  for (; columns < array.Columns(); ++columns) {
    const std::vector<std::string> column = ShownColumn(array, columns, rows);
    const std::size_t more = WidthOf(column[0]) + 2;
    if (columns > 0 && width + more > kMaxWidth) break;
    width += more;
    for (std::size_t i = 0; i < lines.size(); ++i) lines[i] += " " + column[i] + " ";
  }

  std::string text;
  const auto add = [&text](std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  };
  add(lines[0]);
  for (std::size_t i = 0; i < widest.width + 2; ++i) text += "\u2500";
  text += "\u253C";
  for (std::size_t i = 0; i < width; ++i) text += "\u2500";
  text += "\n";
  for (std::size_t i = 1; i < lines.size(); ++i) {
    add(lines[i]);
    if (rows.Hidden() > 0 && static_cast<std::int32_t>(i) == rows.Head())
      add(" " + Padded({std::string(kGap), 1, true}, widest.width) + " \u2502 " + Counted(rows.Hidden(), "row") +
          " not shown");
  }
  if (columns < array.Columns()) add(" " + Counted(array.Columns() - columns, "column") + " to the right not shown");
  if (rows.Hidden() > 0 || columns < array.Columns())
    add(" " + Counted(array.Rows(), "row") + " x " + Counted(array.Columns(), "column") + " in all");
  return text;
}

}  // namespace qcalc
