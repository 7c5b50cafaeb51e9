// The tables that MATCH, VLOOKUP and their kin search.
#pragma once

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/lookup_search.h"

namespace qcalc {

/// What is searched: cells of a sheet, an array, or a single value.
class LookupTable {
 public:
  /// `operand` outlives the table. A single number or boolean is an array of one, a text is refused. (Whether Excel
  /// takes single values so is not known but for texts.)
  LookupTable(const Value& operand, const Workbooks& workbooks) {
    if (operand.IsReference()) {
      const Reference& reference = operand.AsReference();
      sheet_ = workbooks.FindSheet(reference.sheet);
      area_ = reference.areas[0];
      if (!sheet_) fault_ = Value::Error(xlerrRef);
      if (reference.areas.size() > 1) fault_ = Value::Error(xlerrValue);
    } else if (operand.IsArray()) {
      array_ = operand.AsArray().get();
      area_ = {0, array_->Rows() - 1, 0, array_->Columns() - 1};
    } else {
      single_ = operand.AsCell();
      if (operand.IsError()) fault_ = operand;
      if (operand.IsText()) fault_ = Value::Error(xlerrValue);
    }
  }

  /// An error when nothing can be searched.
  const Value& Fault() const { return fault_; }
  std::int32_t Rows() const { return area_.Rows(); }
  std::int32_t Columns() const { return area_.Columns(); }
  /// The column, or row, by its place, from 0.
  CellLine Column(std::int32_t column) const {
    const std::int32_t c = area_.firstColumn + column;
    if (sheet_) return {*sheet_, {area_.firstRow, area_.lastRow, c, c}};
    return array_ ? CellLine::ColumnOf(*array_, c) : CellLine(single_);
  }
  CellLine Row(std::int32_t row) const {
    const std::int32_t r = area_.firstRow + row;
    if (sheet_) return {*sheet_, {r, r, area_.firstColumn, area_.lastColumn}};
    return array_ ? CellLine::RowOf(*array_, r) : CellLine(single_);
  }
  /// The row or column that there is one of; the first column where there are several of both.
  CellLine OnlyLine() const { return Rows() == 1 ? Row(0) : Column(0); }
  bool IsLine() const { return Rows() == 1 || Columns() == 1; }

 private:
  const Sheet* sheet_ = nullptr;
  const Array* array_ = nullptr;
  CellView single_;
  Area area_;
  Value fault_;
};

/// An error when nothing can be looked up by that value.
Value FaultOfKey(const CellView& key);

}  // namespace qcalc
