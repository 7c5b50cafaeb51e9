#include "host/commands/result_format.h"

#include "host/output/cell_text.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

/// Calls `visit(cell, isFirstOfRow)` for each cell, row by row.
template <typename Visitor>
void VisitCells(const Value& value, Visitor&& visit) {
  if (!value.IsArray()) return visit(value.IsMissing() ? CellView() : value.AsCell(), true);
  const Array& array = *value.AsArray();
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column) visit(array.At(row, column), column == 0);
}

std::string FormatCsv(const Value& value) {
  std::string text;
  bool isAnyWritten = false;
  VisitCells(value, [&](const CellView& cell, bool isFirst) {
    if (isAnyWritten) text += isFirst ? "\n" : ",";
    AppendCsvField(text, cell);
    isAnyWritten = true;
  });
  return text + "\n";
}

std::string FormatJson(const Value& value) {
  std::string text;
  VisitCells(value, [&](const CellView& cell, bool isFirst) {
    if (value.IsArray()) text += !isFirst ? "," : text.empty() ? "[[" : "],[";
    AppendJsonCell(text, cell);
  });
  if (value.IsArray()) text += "]]";
  return text + "\n";
}

}  // namespace

std::string FormatResult(const Value& value, ResultFormat format) {
  switch (format) {
    case ResultFormat::kCsv:
      return FormatCsv(value);
    case ResultFormat::kJson:
      return FormatJson(value);
    case ResultFormat::kLiteral:
      break;
  }
  return PrintLiteral(value) + "\n";
}

}  // namespace qcalc
