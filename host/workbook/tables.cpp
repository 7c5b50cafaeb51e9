#include "host/workbook/tables.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace qcalc {

Table::Table(XString name, SheetArea where, std::int32_t headerRows, std::int32_t totalsRows,
             const std::vector<XString>& columns)
    : name_(std::move(name)), where_(where), headerRows_(headerRows), totalsRows_(totalsRows) {
  const std::size_t count = std::min(columns.size(), static_cast<std::size_t>(where.area.Columns()));
  for (std::size_t i = 0; i < count; ++i) columns_.emplace(columns[i], static_cast<std::int32_t>(i));
}

std::optional<std::int32_t> Table::FindColumn(XStringView name) const {
  const auto found = columns_.find(name);
  return found == columns_.end() ? std::nullopt : std::optional(found->second);
}

std::variant<SheetArea, std::int32_t> Table::Resolve(const TableReference& reference, std::int32_t callingRow) const {
  Area area = where_.area;
  const std::int32_t firstData = area.firstRow + headerRows_, lastData = area.lastRow - totalsRows_;
  if (!reference.firstColumn.empty()) {
    const auto first = FindColumn(reference.firstColumn), last = FindColumn(reference.lastColumn);
    if (!first || !last) return xlerrRef;
    std::tie(area.firstColumn, area.lastColumn) =
        std::minmax({where_.area.firstColumn + *first, where_.area.firstColumn + *last});
  }
  if (reference.isThisRow) {
    if (callingRow < firstData || callingRow > lastData) return xlerrValue;
    area.firstRow = area.lastRow = callingRow;
  } else if (!reference.isAll) {
    const bool lacks = (reference.hasHeaders && headerRows_ == 0) || (reference.hasTotals && totalsRows_ == 0);
    if (lacks) return xlerrRef;
    if (!reference.hasHeaders) area.firstRow = reference.hasData ? firstData : lastData + 1;
    if (!reference.hasTotals) area.lastRow = reference.hasData ? lastData : firstData - 1;
  }
  return area.IsOnSheet() ? std::variant<SheetArea, std::int32_t>(SheetArea{where_.sheet, area}) : xlerrRef;
}

void Tables::Add(Table table) {
  XString name = table.Name();
  tables_.insert_or_assign(std::move(name), std::move(table));
}

const Table* Tables::Find(XStringView name) const {
  const auto found = tables_.find(name);
  return found == tables_.end() ? nullptr : &found->second;
}

}  // namespace qcalc
