#include "table/truth_value.h"

#include "frame/convert/convert_cell.h"

namespace quillmere {

TruthValue TruthOfOther(const XLOPER12& cell) {
  const std::uint32_t type = CellType(cell);
  if (type != xltypeStr && type != xltypeInt) return TruthValue::kNone;
  bool value = false;
  if (ConvertCell(cell, TextReading::kPlain, value)) return AsTruth(value);
  double number = 0;
  return ConvertCell(cell, TextReading::kPlain, number) ? AsTruth(number != 0) : TruthValue::kNone;
}

}  // namespace quillmere
