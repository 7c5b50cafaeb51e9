#include "bench/excel_answers.h"

#include <cstdlib>
#include <string>

#include "frame/entry/excel_entry.h"
#include "frame/values/cell.h"
#include "xlcall/callback_list.h"

namespace quillmere {
namespace {

/// The cells of an area, which xlFree takes back.
XLOPER12 NumberedCells(const XLREF12& area) {
  const std::size_t rows = area.rwLast - area.rwFirst + 1;
  const std::size_t columns = area.colLast - area.colFirst + 1;
  auto* const cells = static_cast<XLOPER12*>(std::malloc(rows * columns * sizeof(XLOPER12)));
  for (std::size_t at = 0; at < rows * columns; ++at) cells[at] = NumberCell(static_cast<double>(at));
  XLOPER12 array{};
  array.val.array = {cells, static_cast<RW>(rows), static_cast<COL>(columns)};
  array.xltype = xltypeMulti;
  return array;
}

XLOPER12 NumberIn(XStringView text) {
  const std::string digits(text.begin(), text.end());
  char* end = nullptr;
  const double number = std::strtod(digits.c_str(), &end);
  return digits.empty() || *end != '\0' ? ErrorCell(xlerrValue) : NumberCell(number);
}

double SumOf(const XLOPER12& array) {
  const XLOPER12* const cells = array.val.array.lparray;
  double sum = 0;
  for (std::int64_t at = 0; at < std::int64_t{array.val.array.rows} * array.val.array.columns; ++at)
    if (IsNumberCell(cells[at])) sum += cells[at].val.num;
  return sum;
}

/// A cell that calls.
XLOPER12 OneCell() {
  XLOPER12 reference{};
  reference.val.sref.count = 1;
  reference.xltype = xltypeSRef;
  return reference;
}

XLOPER12 SheetName() {
  static XCHAR counted[] = XTEXT("\x0D[Book1]Sheet1");
  XLOPER12 name{};
  name.val.str = counted;
  name.xltype = xltypeStr;
  return name;
}

extern "C" int Answer(int xlfn, int, XLOPER12** arguments, XLOPER12* result) {
  if (xlfn == xlfCaller) {
    *result = OneCell();
    return xlretSuccess;
  }
  const XLOPER12& first = *arguments[0];
  switch (xlfn) {
    case xlFree:
      if (TypeOf(first) == xltypeMulti) std::free(first.val.array.lparray);
      return xlretSuccess;
    case xlCoerce:
      *result = NumberedCells(first.val.sref.ref);
      return xlretSuccess;
    case xlfValue:
      *result = NumberIn(TextOf(first));
      return xlretSuccess;
    case xlSheetNm:
      *result = SheetName();
      return xlretSuccess;
    case xlfGetCell:
      *result = NumberCell(arguments[1]->val.sref.ref.rwFirst % 2 == 0 ? 15 : 0);
      return xlretSuccess;
    case xlfSum:
      *result = NumberCell(SumOf(first));
      return xlretSuccess;
    default:
      return xlretFailed;
  }
}

}  // namespace

void InstallExcelAnswers() { InstallExcel12Entry(Answer); }

}  // namespace quillmere
