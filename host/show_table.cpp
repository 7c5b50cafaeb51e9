#include "host/show_table.h"

#include <algorithm>
#include <vector>

#include "host/literal.h"
#include "host/number_text.h"
#include "host/utf8.h"

namespace qcalc {
namespace {

constexpr std::size_t kMaxCellWidth = 32;
constexpr std::int32_t kMaxColumns = 16;

/// One cell as it stands in the table: one line, in UTF-8, of so many characters.
struct ShownCell {
  std::string text;
  std::size_t width = 0;
  bool isRight = false;
};

std::size_t CharactersOf(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string ShownText(XStringView text) {
  XString line(text.substr(0, kMaxCellWidth));
  const bool isCut = text.size() > kMaxCellWidth;
  // Half a character is none.
  if (isCut && (line.back() & 0xFC00) == 0xD800) line.pop_back();
  for (XCHAR& unit : line)
    if (unit < 0x20 || unit == 0x7F) unit = static_cast<XCHAR>(0x00B7);
  return ToUtf8(line) + (isCut ? "\u2026" : "");
}

ShownCell Show(const CellView& cell) {
  ShownCell shown;
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      break;
    case CellKind::kNumber:
      shown.text = ToUtf8(NumberToText(cell.AsNumber()));
      shown.isRight = true;
      break;
    case CellKind::kText:
      shown.text = ShownText(cell.AsText());
      break;
    default:
      shown.text = PrintLiteral(cell);
  }
  shown.width = CharactersOf(shown.text);
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

std::string Joined(const std::vector<ShownCell>& row, const std::vector<std::size_t>& widths) {
  std::string line = " " + Padded(row[0], widths[0]) + " \u2502";
  for (std::size_t c = 1; c < row.size(); ++c) line += " " + Padded(row[c], widths[c]) + " ";
  line.erase(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

}  // namespace

std::string ShowTable(const Value& value, int maxRows) {
  const bool isArray = value.IsArray();
  const std::int32_t rows = isArray ? value.AsArray()->Rows() : 1;
  const std::int32_t columns = isArray ? value.AsArray()->Columns() : 1;
  const std::int32_t shownRows = std::min<std::int32_t>(rows, maxRows);
  const std::int32_t shownColumns = std::min(columns, kMaxColumns);
  std::vector<std::vector<ShownCell>> table(1, {ShownCell{}});
  for (std::int32_t c = 0; c < shownColumns; ++c) table[0].push_back(Number(c + 1));
  for (std::int32_t r = 0; r < shownRows; ++r) {
    std::vector<ShownCell>& line = table.emplace_back(1, Number(r + 1));
    for (std::int32_t c = 0; c < shownColumns; ++c)
      line.push_back(Show(isArray ? value.AsArray()->At(r, c) : value.AsCell()));
  }
  std::vector<std::size_t> widths(table[0].size());
  for (const auto& line : table)
    for (std::size_t c = 0; c < line.size(); ++c) widths[c] = std::max(widths[c], line[c].width);
  // A column's number stands over its values: to the right over numbers, else to the left.
  for (std::size_t c = 1; c < table[0].size(); ++c)
    table[0][c].isRight =
        std::any_of(table.begin() + 1, table.end(), [c](const auto& line) { return line[c].isRight; });

  std::string text = Joined(table[0], widths);
  for (std::size_t i = 0; i < widths[0] + 2; ++i) text += "\u2500";
  text += "\u253C";
  for (std::size_t c = 1; c < widths.size(); ++c)
    for (std::size_t i = 0; i < widths[c] + 2; ++i) text += "\u2500";
  text += "\n";
  for (std::size_t r = 1; r < table.size(); ++r) text += Joined(table[r], widths);
  const auto more = [&](std::int32_t count, const char* one, const char* many) {
    if (count > 0) text += " ... " + std::to_string(count) + " more " + (count == 1 ? one : many) + "\n";
  };
  more(rows - shownRows, "row", "rows");
  more(columns - shownColumns, "column", "columns");
  return text;
}

}  // namespace qcalc
