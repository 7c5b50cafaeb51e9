#include "host/xlsx/row_rewriting.h"

#include <algorithm>

#include "host/formulas/reference_text.h"
#include "host/process/checked_output.h"
#include "host/text/digits.h"
#include "host/xlsx/cell_markup.h"
#include "host/xlsx/cell_name.h"

namespace qcalc {
namespace {

/// The column of the cell of that name; nothing for what is no cell.
std::optional<std::int32_t> ColumnIn(std::string_view cell) {
  std::int32_t row = 0, column = 0;
  return ReadCellName(cell, row, column) ? std::optional(column) : std::nullopt;
}

/// The whole number of that attribute; nothing where it has none.
std::optional<std::int32_t> NumberOf(std::string_view tag, std::string_view name) {
  const auto value = AttributeOfTag(tag, name);
  return value ? ReadWhole<std::int32_t>(*value) : std::nullopt;
}

/// Appends the tag without its end, and without the attributes that `isLeft` tells; what stands behind the last one.
template <typename IsLeft>
std::string_view AppendTag(std::string& out, std::string_view tag, IsLeft&& isLeft) {
  auto [opening, rest] = PartsOfTag(tag);
  out += opening;
  while (const auto attribute = TakeAttribute(rest))
    if (!isLeft(*attribute)) out += attribute->written;
  return rest;
}

}  // namespace

RowRewriting::RowRewriting(const SheetResults& results, std::string_view head) : results_(results), changed_(results) {
  if (const auto used = results.sheet->UsedArea()) rowsUsed_ = used->lastRow + 1;
  ReadColumnStyles(head);
}

void RowRewriting::ReadColumnStyles(std::string_view head) {
  for (auto markup = FindMarkup(head, 0); markup; markup = FindMarkup(head, markup->end)) {
    const std::string_view tag = markup->In(head);
    if (!markup->IsTag() || NameOfTag(tag) != "col") continue;
    const auto first = NumberOf(tag, "min"), last = NumberOf(tag, "max");
    const auto style = AttributeOfTag(tag, "style");
    if (first && last && style) columnStyles_.push_back({*first - 1, *last - 1, std::string(*style)});
  }
}

void RowRewriting::AppendRow(std::string& out, std::string_view gap, std::string_view row) {
  const XmlChildren parts(row);
  const std::string_view tag = parts.Tag();
  const std::string_view name = PartsOfTag(tag).opening.substr(1);
  prefix_ = name.substr(0, name.size() - WithoutPrefix(name).size());
  const auto number = NumberOf(tag, "r");
  const std::int32_t at = number ? *number - 1 : row_ + 1;
  AppendRowsBefore(out, at);
  out += gap;
  BeginRow(at);
  if (columns_.IsEmpty()) {
    out += row;
    return;
  }
  if (IsTrue(AttributeOfTag(tag, "customFormat"))) rowStyle_ = AttributeOfTag(tag, "s").value_or("");
  RewriteRow(out, parts);
}

void RowRewriting::AppendRest(std::string& out) { AppendRowsBefore(out, kXlMaxRows); }

void RowRewriting::AppendRowsBefore(std::string& out, std::int32_t end) {
  end = std::min(end, rowsUsed_);
  for (auto row = changed_.NextRow(row_ + 1); row && *row < end; row = changed_.NextRow(row_ + 1)) {
    BeginRow(*row);
    AppendNewCells(kXlMaxColumns);
    if (!isAnyNew_) continue;
    out += "<" + prefix_ + "row r=\"" + std::to_string(*row + 1) + "\">" + cells_ + "</" + prefix_ + "row>";
  }
}

void RowRewriting::BeginRow(std::int32_t row) {
  row_ = row;
  columns_ = ChangedColumns(changed_.OfRow(row));
  rowStyle_.clear();
  cells_.clear();
  isAnyNew_ = false;
}

void RowRewriting::RewriteRow(std::string& out, const XmlChildren& row) {
  XmlChildren children = row;
  std::int32_t column = -1;
  while (const auto piece = children.Next()) {
    const bool isCell = NameOfTag(piece->element) == "c";
    if (isCell)
      column = ColumnIn(AttributeOfTag(XmlChildren(piece->element).Tag(), "r").value_or("")).value_or(column + 1);
    AppendNewCells(isCell ? column : kXlMaxColumns);
    cells_ += piece->gap;
    if (isCell && columns_.Take(column))
      RewriteCell(piece->element, column);
    else
      cells_ += piece->element;
  }
  AppendNewCells(kXlMaxColumns);
  if (!isAnyNew_ && row.HasContent()) {
    out += row.Tag();
  } else {
    // Which columns the row spans is a hint, and would be wrong now.
    AppendTag(out, row.Tag(), [&](const XmlAttribute& attribute) { return isAnyNew_ && attribute.name == "spans"; });
    out += '>';
  }
  out += cells_;
  if (row.HasContent())
    out += children.Tail();
  else
    out += "</" + prefix_ + "row>";
}

void RowRewriting::RewriteCell(std::string_view cell, std::int32_t column) {
  XmlChildren children(cell);
  std::string_view formula, others;
  while (const auto piece = children.Next()) {
    const std::string_view name = NameOfTag(piece->element);
    if (name == "f") formula = piece->element;
    if (name != "f" && name != "v" && name != "is") others = piece->element;
  }
  const FormulaResult* result = ResultAt(column);
  if (!formula.empty() && !(result && result->isCalculated)) {
    cells_ += cell;
    return;
  }
  const CellView& value = results_.sheet->Get(row_, column);
  // What is told of the value (vm) holds for that one.
  AppendTag(cells_, children.Tag(),
            [](const XmlAttribute& attribute) { return attribute.name == "t" || attribute.name == "vm"; });
  cells_ += TypeAttribute(value);
  if (formula.empty() && others.empty() && value.IsEmpty()) {
    cells_ += "/>";
    return;
  }
  cells_ += '>';
  if (!formula.empty()) AppendFormula(formula, *result);
  AppendCellValue(cells_, prefix_, value);
  cells_ += others;
  cells_ += "</" + prefix_ + "c>";
}

void RowRewriting::AppendFormula(std::string_view formula, const FormulaResult& result) {
  const std::string_view tag = XmlChildren(formula).Tag();
  if (result.fillsNow == result.filledBefore || AttributeOfTag(tag, "t") != "array") {
    cells_ += formula;
    return;
  }
  const auto isArea = [](const XmlAttribute& attribute) { return attribute.name == "ref"; };
  const std::string_view rest = AppendTag(cells_, tag, isArea);
  cells_ += " ref=\"" + AreaToText(result.fillsNow) + '"';
  cells_ += formula.substr(static_cast<std::size_t>(rest.data() - formula.data()));
}

void RowRewriting::AppendNewCells(std::int32_t end) {
  columns_.TakeBefore(std::min(end, results_.sheet->Cells().ColumnsReached()), [&](std::int32_t column) {
    const CellView& value = results_.sheet->Get(row_, column);
    if (!value.IsEmpty()) AppendNewCell(column, value);
  });
}

void RowRewriting::AppendNewCell(std::int32_t column, const CellView& value) {
  isAnyNew_ = true;
  cells_ += "<" + prefix_ + "c r=\"" + AreaToText(Area::OfCell(row_, column)) + '"';
  if (const std::string_view style = StyleOf(column); !style.empty()) {
    cells_ += " s=\"";
    cells_ += style;
    cells_ += '"';
  }
  cells_ += TypeAttribute(value);
  cells_ += '>';
  AppendCellValue(cells_, prefix_, value);
  cells_ += "</" + prefix_ + "c>";
}

std::string_view RowRewriting::StyleOf(std::int32_t column) const {
  if (!rowStyle_.empty()) return rowStyle_;
  const auto behind =
      std::upper_bound(columnStyles_.begin(), columnStyles_.end(), column,
                       [](std::int32_t place, const StyledColumns& columns) { return place < columns.first; });
  if (behind == columnStyles_.begin() || std::prev(behind)->last < column) return {};
  return std::prev(behind)->style;
}

const FormulaResult* RowRewriting::ResultAt(std::int32_t column) {
  const CellPosition at{row_, column};
  const auto& formulas = results_.formulas;
  while (nextResult_ < formulas.size() && formulas[nextResult_].position < at) ++nextResult_;
  return nextResult_ < formulas.size() && formulas[nextResult_].position == at ? &formulas[nextResult_] : nullptr;
}

}  // namespace qcalc
