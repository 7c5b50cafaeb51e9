#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/text/utf8.h"
#include "host/values/conversion.h"
#include "host/values/literal.h"
#include "tests/models/shape/model.h"

namespace qcalc::shape {
namespace {

using Places = std::vector<std::int32_t>;

const XString kOutside = XTEXT(" outside bounds of Range_Array");

XString Label(const CellView& cell) {
  if (cell.IsError()) return *FromUtf8(ErrorName(cell.AsError()));
  XString text = ToText(cell, {}).AsText();
  for (XCHAR& unit : text)
    if ((unit >= 'a' && unit <= 'z') || unit == 0xE9) unit = static_cast<XCHAR>(unit - 0x20);
  return text;
}

/// Of lines whose first cells are their labels. What goes wrong goes to `failure`.
Places PickByItems(const Grid& lines, const Grid& items, XString& failure) {
  Places places;
  // 0, too, is the last one.
  const auto add = [&](double number, bool isEnd) {
    const double place = number > 0 ? number - 1 : lines.rows + (number < 0 ? number : -1);
    if (place < 0 || place >= lines.rows) {
      failure = kOutside;
      return;
    }
    const auto last = static_cast<std::int32_t>(place);
    for (std::int32_t next = !isEnd ? last : places.empty() ? 0 : places.back() + 1; next <= last; ++next)
      places.push_back(next);
  };
  for (std::size_t i = 0; i < items.cells.size() && failure.empty(); ++i) {
    const CellView& item = items.cells[i];
    if (item.IsText()) {
      for (std::int32_t line = 0; line < lines.rows; ++line)
        if (Label(lines.At(line, 0)) == Label(item)) places.push_back(line);
    } else if (!item.IsNumber()) {
      failure = XTEXT(" invalid Row/Column item");
    } else if (std::trunc(item.AsNumber()) != 0) {
      add(std::trunc(item.AsNumber()), false);
    } else {
      const bool hasEnd = i + 1 < items.cells.size() && items.cells[i + 1].IsNumber();
      add(hasEnd ? std::trunc(items.cells[++i].AsNumber()) : 0, true);
    }
  }
  if (failure.empty() && places.empty()) failure = kOutside;
  return places;
}

/// Where both are references: the places whose cells any area of the selector lies beside.
Places PickByAreas(const Reference& table, const Reference& selector, bool isRows, XString& failure) {
  Places places;
  const Area& all = table.areas[0];
  const std::int32_t first = isRows ? all.firstRow : all.firstColumn, last = isRows ? all.lastRow : all.lastColumn;
  for (std::int32_t at = first; at <= last && table.sheet == selector.sheet; ++at)
    if (std::any_of(selector.areas.begin(), selector.areas.end(), [&](const Area& area) {
          return isRows ? area.firstRow <= at && at <= area.lastRow : area.firstColumn <= at && at <= area.lastColumn;
        }))
      places.push_back(at - first);
  if (places.empty()) failure = XTEXT(" - Union of References do not Intersect Range_Array");
  return places;
}

Places Pick(const FieldCall& call, const Value& selector, bool isRows, XString& failure) {
  const Value& table = call.operands[0];
  const Grid cells = call.CellsOf(table), lines = isRows ? cells : cells.Turned();
  if (table.IsReference() && selector.IsReference()) {
    Reference cut = table.AsReference();
    cut.areas[0].lastRow = cut.areas[0].firstRow + cells.rows - 1;
    return PickByAreas(cut, selector.AsReference(), isRows, failure);
  }
  return PickByItems(lines, selector.IsMissing() ? Grid{1, 1, {CellView::Number(0)}} : call.CellsOf(selector), failure);
}

bool AreNeighbours(const Places& places) {
  return std::adjacent_find(places.begin(), places.end(),
                            [](std::int32_t one, std::int32_t next) { return next != one + 1; }) == places.end();
}

}  // namespace

Value Part(const Reference& table, std::int32_t row, std::int32_t column, std::int32_t rows, std::int32_t columns) {
  const Area& all = table.areas[0];
  const Area area = Area::OfSize(all.firstRow + row, all.firstColumn + column, rows, columns);
  return area.IsOnSheet() ? Value::OfReference({table.sheet, {area}}) : Value::Error(xlerrRef);
}

Grid Slice::Of(const Grid& table) const {
  return Grid::Of(static_cast<std::int32_t>(rows.size()), static_cast<std::int32_t>(columns.size()),
                  [&](std::int32_t row, std::int32_t column) {
                    return table.At(rows[static_cast<std::size_t>(row)], columns[static_cast<std::size_t>(column)]);
                  });
}

Slice ReadSlice(const FieldCall& call, const Value& rows, const Value& columns, XStringView prefix) {
  Slice slice;
  XString rowFailure, columnFailure;
  slice.rows = Pick(call, rows, true, rowFailure);
  slice.columns = Pick(call, columns, false, columnFailure);
  const XString start = XTEXT("#Error: ") + XString(prefix);
  if (!columnFailure.empty()) slice.failure = Told(start + XTEXT(" Cols") + columnFailure);
  if (!rowFailure.empty()) slice.failure = Told(start + XTEXT(" Rows") + rowFailure);
  return slice;
}

Value ExpectedSlices(const FieldCall& call) {
  const Grid cells = call.Cells(0);
  if (cells.rows == 0) return kValueError;
  const Slice slice = ReadSlice(call, call.operands[1], call.operands[2], XTEXT("Slices"));
  if (slice.failure) return *slice.failure;
  const Grid result = slice.Of(cells);
  const bool isReference = call.operands[0].IsReference() && AreNeighbours(slice.rows) && AreNeighbours(slice.columns);
  if (!isReference) return result.Result();
  return Part(call.operands[0].AsReference(), slice.rows[0], slice.columns[0], result.rows, result.columns);
}

}  // namespace qcalc::shape
