// What COUNTIF and its kin look for.
#pragma once

#include <algorithm>
#include <optional>

#include "host/calculation/lookup_pattern.h"
#include "host/values/number_marks.h"
#include "host/values/value.h"
#include "host/workbook/sheet.h"

namespace qcalc {

/// A criterion: a value, or a text of an operator (`=`, `<>`, `<`, `<=`, `>`, `>=`) and a value. A text that reads as
/// another kind of value is that value; other texts have wildcards. `""` takes what looks empty, `"="` what is empty,
/// `"<>"` what is not. An empty cell looks for 0.
class Criterion {
 public:
  Criterion(const CellView& cell, NumberMarks marks);

  bool Matches(const CellView& cell) const;
  bool MatchesEmpty() const { return Matches(CellView()); }

  /// Calls `visitor(row, column)` for each cell of the area that is not empty and matches, column by column. Where many
  /// look for equal values of one column, in the time that the matches take.
  template <typename Visitor>
  void VisitMatches(const Sheet& sheet, const Area& area, Visitor&& visitor) const;

 private:
  enum class Operator { kEqual, kNotEqual, kLess, kLessOrEqual, kGreater, kGreaterOrEqual };
  // What the cells are held against.
  enum class Operand { kValue, kPattern, kLooksEmpty, kIsEmpty };

  void ReadOperand(XStringView text, bool mayBePattern);
  bool Equals(const CellView& cell) const;
  bool ReadsAsKey(XStringView text) const;
  bool IsIndexed() const {
    return operator_ == Operator::kEqual && operand_ == Operand::kValue && !key_.IsError() && !key_.IsEmpty();
  }

  Operator operator_ = Operator::kEqual;
  Operand operand_ = Operand::kValue;
  Value key_;
  std::optional<LookupPattern> pattern_;
  NumberMarks marks_;
};

template <typename Visitor>
void Criterion::VisitMatches(const Sheet& sheet, const Area& area, Visitor&& visitor) const {
  // A shorter column asks for no index and leaves no trace.
  constexpr std::int32_t kShort = 64;
  const CellStore& cells = sheet.Cells();
  const std::int32_t lastColumn = std::min(area.lastColumn, cells.ColumnsReached() - 1);
  for (std::int32_t column = area.firstColumn; column <= lastColumn; ++column) {
    const std::int32_t last = std::min(area.lastRow, cells.RowsReached(column) - 1);
    const bool isIndexed = IsIndexed() && last - area.firstRow > kShort;
    const auto index = isIndexed ? sheet.Indexes().Find(cells, column) : nullptr;
    if (!index) {
      cells.VisitUsed({area.firstRow, last, column, column}, [&](std::int32_t row, std::int32_t, const CellView& cell) {
        if (Matches(cell)) visitor(row, column);
      });
      if (isIndexed) sheet.Indexes().NoteScan(cells, column, last - area.firstRow + 1);
      continue;
    }
    index->VisitRows(cells, key_.AsCell(), area.firstRow, last, [&](std::int32_t row) { visitor(row, column); });
    if (!key_.IsNumber()) continue;
    // Texts that read as the number have their places elsewhere in the index.
    const auto next = [&](std::int32_t from) {
      return cells.FindRow(column, from, last, CellKind::kText,
                           [this](const CellView& cell) { return ReadsAsKey(cell.AsText()); });
    };
    for (auto row = next(area.firstRow); row; row = next(*row + 1)) visitor(*row, column);
  }
}

}  // namespace qcalc
