#include "series/table_numbers.h"

#include <limits>

#include "frame/convert/convert_cell.h"
#include "frame/convert/convert_params.h"

namespace quillmere::series {
void RefuseCell(XStringView argument) { CConvertParamsBase(argument).ThrowExpected(TypeName(ElementKind::kNumber)); }

double OtherNumberIn(const XLOPER12& cell, XStringView argument) { return CheckedNumber(NumberOrNone(cell), argument); }

double NumberOrNone(const XLOPER12& cell) {
  double number = std::numeric_limits<double>::quiet_NaN();
  ConvertCellTo<ElementKind::kNumber>(cell, TextReading::kPlain, number);
  return number;
}

void TableNumbers::Expect(const PlaceRange& rows, const PlaceRange& columns, std::int64_t times) {
  if (std::int64_t{rows.Count()} * columns.Count() <= times * kCellsWorthACallback) Want(rows, columns);
}

void TableNumbers::Fetch(const PlaceRange& rows, const PlaceRange& columns) {
  const auto count = static_cast<std::size_t>(columns.Count());
  numbers_ = ScratchArray<double>(static_cast<std::size_t>(rows.Count()) * count);
  double* to = numbers_.data();
  ForEachCell(table_.SomeRows(rows.first, rows.Count()),
              std::span(columns_).subspan(static_cast<std::size_t>(columns.first), count),
              [&](const XLOPER12& cell) { *to++ = NumberOrNone(cell); });
  rows_ = rows;
  places_ = columns;
}

}  // namespace quillmere::series
