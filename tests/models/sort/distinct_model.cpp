#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <numeric>

#include "tests/models/lookup/model_matching.h"
#include "tests/models/sort/model.h"

namespace qcalc::sort {
namespace {

/// Sorted by the items, or by the figures, which are the last cells of the rows.
Rows Sorted(const Rows& rows, double sort, Figure figure) {
  if (sort == 0 || rows.empty()) return rows;
  const auto width = static_cast<std::int32_t>(rows[0].size());
  std::vector<std::int32_t> columns(static_cast<std::size_t>(figure == Figure::kNone ? width : width - 1));
  std::iota(columns.begin(), columns.end(), 1);
  if (figure != Figure::kNone && std::abs(sort) == 2) columns = {width};
  for (std::int32_t& column : columns) column = sort < 0 ? -column : column;
  return SortedRows(rows, columns, TextOrder::kLanguage);
}

/// As large as the calling cells when they are several, cut or filled.
Rows Fitted(Rows rows, const models::CallingPlace& place, const CellView& fill) {
  if (place.rows == 1 && place.columns == 1) return rows.empty() ? Rows{{fill}} : rows;
  rows.resize(static_cast<std::size_t>(place.rows));
  for (Row& row : rows) row.resize(static_cast<std::size_t>(place.columns), fill);
  return rows;
}

}  // namespace

XString KeyOf(const Row& cells, bool caseSensitive) {
  XString key;
  for (const CellView& cell : cells) {
    key += static_cast<XCHAR>(cell.Kind());
    if (cell.IsNumber()) {
      const double number = cell.AsNumber() == 0 ? 0 : cell.AsNumber();
      XCHAR units[sizeof number / sizeof(XCHAR)];
      std::memcpy(units, &number, sizeof number);
      key.append(units, std::size(units));
    }
    if (cell.IsBoolean()) key += static_cast<XCHAR>(cell.AsBoolean());
    if (cell.IsError()) key += static_cast<XCHAR>(cell.AsError());
    if (!cell.IsText()) continue;
    key += static_cast<XCHAR>(cell.AsText().size());
    for (const XCHAR unit : cell.AsText()) key += caseSensitive ? unit : lookup::FoldLatin(unit);
  }
  return key;
}

Rows ItemsOf(const Array& table, bool byRows) {
  if (byRows) return RowsOf(table);
  Rows items;
  for (const CellView& cell : table.Cells()) items.push_back({cell});
  return items;
}

bool IsIgnored(const Row& item, double flags) {
  const int set = flags >= 1 && flags < 8 ? static_cast<int>(flags) : 0;
  const auto isError = [](const CellView& cell) { return cell.IsError(); };
  const auto isBlank = [](const CellView& cell) { return cell.IsEmpty() || (cell.IsText() && cell.AsText().empty()); };
  const auto isZero = [](const CellView& cell) { return cell.IsNumber() && cell.AsNumber() == 0; };
  return ((set & 1) && std::any_of(item.begin(), item.end(), isError)) ||
         ((set & 2) && std::all_of(item.begin(), item.end(), isBlank)) ||
         ((set & 4) && std::all_of(item.begin(), item.end(), isZero));
}

Value ExpectedDistinct(const Call& call) {
  const DistinctFunction& function =
      *std::find_if(std::begin(kDistinctFunctions), std::end(kDistinctFunctions),
                    [&](const DistinctFunction& one) { return one.name == call.function; });
  const auto setting = [&](std::size_t place, double leftOut) {
    return place == kNowhere ? leftOut : SettingOr(leftOut, call.settings[place]);
  };
  const Rows items = ItemsOf(*call.tables[0], setting(function.byRows, 1) != 0);
  // A column, or a row, with a value for each row.
  const Array* companions = call.tables.size() > 1 ? call.tables[1].get() : nullptr;
  if (companions && (std::min(companions->Rows(), companions->Columns()) > 1 || companions->Size() != items.size()))
    return Value::Error(xlerrValue);

  std::map<XString, std::size_t> places;
  Rows rows;
  std::vector<double> counts, sums;
  double total = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (IsIgnored(items[i], setting(0, 3))) continue;
    const auto [found, isNew] = places.try_emplace(KeyOf(items[i], setting(function.caseSense, 0) != 0), rows.size());
    if (isNew) rows.push_back(items[i]), counts.push_back(0), sums.push_back(0);
    ++counts[found->second], ++total;
    if (companions && companions->Cells()[i].IsNumber()) sums[found->second] += companions->Cells()[i].AsNumber();
  }
  const auto distinct = static_cast<double>(rows.size());
  if (function.fill == kNowhere)
    return Value::Number(function.name == XTEXT("COUNTDUPES") ? total - distinct : distinct);

  for (std::size_t i = 0; i < rows.size() && function.figure != Figure::kNone; ++i) {
    const double figures[] = {counts[i], sums[i], sums[i] / counts[i]};
    const double figure = figures[static_cast<int>(function.figure) - 1];
    rows[i].push_back(std::isfinite(figure) ? CellView::Number(figure) : CellView::Error(xlerrNum));
  }
  const CellView fills[] = {CellView::Error(xlerrNA), CellView::Text(XTEXT("")), CellView::Number(0)};
  rows = Sorted(rows, setting(function.sort, 0), function.figure);
  return ResultOf(Fitted(std::move(rows), call.place, fills[static_cast<int>(setting(function.fill, 0))]));
}

}  // namespace qcalc::sort
