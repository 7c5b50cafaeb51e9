#include <algorithm>
#include <numeric>
#include <optional>

#include "host/text/collation.h"
#include "host/text/letter_case.h"
#include "host/values/conversion.h"
#include "tests/models/sort/model.h"

namespace qcalc::sort {
namespace {

int Sign(std::weak_ordering order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }

int Rank(const CellView& cell) {
  return cell.IsNumber() ? 0 : cell.IsText() ? 1 : cell.IsBoolean() ? 2 : cell.IsError() ? 3 : 4;
}

int CompareTexts(XStringView a, XStringView b, TextOrder order) {
  if (order == TextOrder::kUnits) return Sign(a <=> b);
  const int side =
      Sign(order == TextOrder::kLanguage ? CompareWithCase(a, b) : CompareInLanguage(FoldCase(a), FoldCase(b)));
  return side != 0 ? side : Sign(a.size() <=> b.size());
}

/// Neither is empty.
int CompareCells(const CellView& a, const CellView& b, TextOrder order) {
  if (Rank(a) != Rank(b)) return Rank(a) < Rank(b) ? -1 : 1;
  if (a.IsNumber()) return a.AsNumber() < b.AsNumber() ? -1 : a.AsNumber() > b.AsNumber() ? 1 : 0;
  if (a.IsText()) return CompareTexts(a.AsText(), b.AsText(), order);
  return a.IsBoolean() ? Sign(a.AsBoolean() <=> b.AsBoolean()) : Sign(a.AsError() <=> b.AsError());
}

/// Nothing where one is no column of the table.
std::optional<std::vector<std::int32_t>> ReadKeys(const Call& call) {
  const std::int32_t columns = call.tables[0]->Columns();
  std::vector<std::int32_t> keys;
  for (const Value& setting : call.settings) {
    if (setting.IsMissing()) break;
    const Value number = ToNumber(setting.AsCell(), {});
    if (!number.IsNumber() || std::abs(number.AsNumber()) >= columns + 1) return std::nullopt;
    const auto key = static_cast<std::int32_t>(number.AsNumber());
    if (key == 0) break;
    keys.push_back(key);
  }
  if (keys.empty()) {
    keys.resize(static_cast<std::size_t>(columns));
    std::iota(keys.begin(), keys.end(), 1);
  }
  return keys;
}

}  // namespace

Rows SortedRows(const Rows& rows, const std::vector<std::int32_t>& columns, TextOrder order) {
  Rows sorted = rows;
  std::stable_sort(sorted.begin(), sorted.end(), [&](const Row& left, const Row& right) {
    for (const std::int32_t column : columns) {
      const auto at = static_cast<std::size_t>(std::abs(column) - 1);
      const CellView &a = left[at], &b = right[at];
      if (a.IsEmpty() != b.IsEmpty()) return b.IsEmpty();
      const int side = a.IsEmpty() ? 0 : CompareCells(a, b, order);
      if (side != 0) return column < 0 ? side > 0 : side < 0;
    }
    return false;
  });
  return sorted;
}

Rows RowsOf(const Array& array) {
  Rows rows;
  const auto width = static_cast<std::size_t>(array.Columns());
  for (auto cells = array.Cells(); !cells.empty(); cells = cells.subspan(width))
    rows.emplace_back(cells.begin(), cells.begin() + array.Columns());
  return rows;
}

ArrayPtr ArrayOf(const Rows& rows) {
  ArrayBuilder array(static_cast<std::int32_t>(rows.size()), static_cast<std::int32_t>(rows[0].size()));
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column)
      array.Set(row, column, rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
  return array.Finish();
}

Value ResultOf(const Rows& rows) {
  ArrayPtr array = ArrayOf(rows);
  return array->Size() == 1 ? Value::OfCell(array->At(0, 0)) : Value::OfArray(std::move(array));
}

double SettingOr(double leftOut, const Value& setting) {
  if (setting.IsMissing()) return leftOut;
  return setting.IsBoolean() ? (setting.AsBoolean() ? 1 : 0) : setting.AsNumber();
}

Value ExpectedSort(const Call& call) {
  const SortFunction& function = *std::find_if(std::begin(kSortFunctions), std::end(kSortFunctions),
                                               [&](const SortFunction& one) { return one.name == call.function; });
  const auto keys = ReadKeys(call);
  if (!keys) return Value::Error(xlerrValue);
  // Each row carries its number behind its cells.
  Rows rows = RowsOf(*call.tables[0]);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].push_back(CellView::Number(static_cast<double>(i) + 1));
  rows = SortedRows(rows, *keys, function.order);
  for (Row& row : rows) {
    if (function.isIndex)
      row = {row.back()};
    else
      row.pop_back();
  }
  return ResultOf(rows);
}

}  // namespace qcalc::sort
