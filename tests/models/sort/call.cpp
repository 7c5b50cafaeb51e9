#include "tests/models/sort/call.h"

namespace qcalc::sort {

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

}  // namespace qcalc::sort
