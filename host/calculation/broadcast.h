// Functions of single values applied to arrays, element by element.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "host/values/value.h"

namespace qcalc {

/// Views one operand of an element-by-element calculation.
class BroadcastOperand {
 public:
  /// `value` is a scalar or an array and outlives the operand.
  explicit BroadcastOperand(const Value& value)
      : array_(value.IsArray() ? value.AsArray().get() : nullptr), scalar_(array_ ? CellView() : value.AsCell()) {}

  std::int32_t Rows() const { return array_ ? array_->Rows() : 1; }
  std::int32_t Columns() const { return array_ ? array_->Columns() : 1; }
  bool IsArray() const { return array_ != nullptr; }
  bool Reaches(std::int32_t row, std::int32_t column) const {
    return (Rows() == 1 || row < Rows()) && (Columns() == 1 || column < Columns());
  }
  /// A single row, column or value repeats.
  CellView At(std::int32_t row, std::int32_t column) const {
    return array_ ? array_->At(Rows() == 1 ? 0 : row, Columns() == 1 ? 0 : column) : scalar_;
  }

 private:
  const Array* array_;
  CellView scalar_;
};

/// Calls `calculate(std::span<const CellView>) -> Value` (a scalar) once for scalar operands, or for each place of the
/// array that all operands together span; where an array among them does not reach, the element is #N/A. A missing
/// operand counts as empty. No operand is a reference.
template <typename Calculate>
Value Broadcast(std::span<const Value> operands, Calculate&& calculate) {
  std::vector<BroadcastOperand> sources(operands.begin(), operands.end());
  std::vector<CellView> cells(sources.size());
  std::int32_t rows = 1, columns = 1;
  bool anyArray = false;
  for (const BroadcastOperand& source : sources) {
    rows = std::max(rows, source.Rows());
    columns = std::max(columns, source.Columns());
    anyArray = anyArray || source.IsArray();
  }
  const auto calculateAt = [&](std::int32_t row, std::int32_t column) -> Value {
    for (std::size_t i = 0; i < sources.size(); ++i) {
      if (!sources[i].Reaches(row, column)) return Value::Error(xlerrNA);
      cells[i] = sources[i].At(row, column);
    }
    return calculate(std::span<const CellView>(cells));
  };
  if (!anyArray) return calculateAt(0, 0);
  ArrayBuilder builder(rows, columns);
  for (std::int32_t row = 0; row < rows; ++row)
    for (std::int32_t column = 0; column < columns; ++column)
      builder.Set(row, column, calculateAt(row, column).AsCell());
  return Value::OfArray(builder.Finish());
}

}  // namespace qcalc
