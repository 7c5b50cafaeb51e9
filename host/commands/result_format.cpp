#include "host/commands/result_format.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

// Beyond this a double has no digits for the ones.
constexpr double kMostExactWhole = 9007199254740992;

/// Calls `visit(cell, isFirstOfRow)` for each cell, row by row.
template <typename Visitor>
void VisitCells(const Value& value, Visitor&& visit) {
  if (!value.IsArray()) return visit(value.IsMissing() ? CellView() : value.AsCell(), true);
  const Array& array = *value.AsArray();
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column) visit(array.At(row, column), column == 0);
}

std::string ProperUtf8(XStringView text) {
  XString proper(text);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const char32_t character = TakeCharacter(text, at);
    if (IsHighSurrogate(character) || IsLowSurrogate(character)) proper[start] = static_cast<XCHAR>(0xFFFD);
  }
  return ToUtf8(proper);
}

std::string CsvField(const CellView& cell) {
  if (cell.IsEmpty()) return {};
  if (!cell.IsText()) return PrintLiteral(cell);
  const std::string text = ProperUtf8(cell.AsText());
  const bool isOuterBlank = !text.empty() && (text.front() == ' ' || text.back() == ' ');
  if (!text.empty() && !isOuterBlank && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char byte : text) quoted += byte == '"' ? std::string("\"\"") : std::string(1, byte);
  return quoted + "\"";
}

std::string FormatCsv(const Value& value) {
  std::string text;
  bool isAnyWritten = false;
  VisitCells(value, [&](const CellView& cell, bool isFirst) {
    if (isAnyWritten) text += isFirst ? "\n" : ",";
    text += CsvField(cell);
    isAnyWritten = true;
  });
  return text + "\n";
}

nlohmann::json JsonOf(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kNumber: {
      const double number = cell.AsNumber();
      const bool isWhole = std::trunc(number) == number && std::fabs(number) < kMostExactWhole;
      if (isWhole) return static_cast<std::int64_t>(number);
      return number;
    }
    case CellKind::kText:
      return ProperUtf8(cell.AsText());
    case CellKind::kBoolean:
      return cell.AsBoolean();
    case CellKind::kError:
      return {{"error", ErrorName(cell.AsError())}};
    case CellKind::kEmpty:
      break;
  }
  return nullptr;
}

std::string FormatJson(const Value& value) {
  nlohmann::json json;
  if (value.IsArray())
    VisitCells(value, [&](const CellView& cell, bool isFirst) {
      if (isFirst) json.push_back(nlohmann::json::array());
      json.back().push_back(JsonOf(cell));
    });
  else
    VisitCells(value, [&](const CellView& cell, bool) { json = JsonOf(cell); });
  return json.dump() + "\n";
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
