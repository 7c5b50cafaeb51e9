#include "host/values/value.h"

namespace qcalc {

Value Value::OfCell(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kNumber:
      return Number(cell.AsNumber());
    case CellKind::kText:
      return Text(XString(cell.AsText()));
    case CellKind::kBoolean:
      return Boolean(cell.AsBoolean());
    case CellKind::kError:
      return Error(cell.AsError());
    case CellKind::kEmpty:
      break;
  }
  return {};
}

ValueKind Value::Kind() const {
  static constexpr ValueKind kKinds[] = {ValueKind::kEmpty, ValueKind::kMissing,  ValueKind::kNumber,
                                         ValueKind::kText,  ValueKind::kBoolean,  ValueKind::kError,
                                         ValueKind::kArray, ValueKind::kReference};
  return kKinds[content_.index()];
}

CellView Value::AsCell() const {
  switch (Kind()) {
    case ValueKind::kNumber:
      return CellView::Number(AsNumber());
    case ValueKind::kText:
      return CellView::Text(AsText());
    case ValueKind::kBoolean:
      return CellView::Boolean(AsBoolean());
    case ValueKind::kError:
      return CellView::Error(AsError());
    case ValueKind::kEmpty:
    case ValueKind::kMissing:
      return {};
    case ValueKind::kArray:
    case ValueKind::kReference:
      break;
  }
  throw std::bad_variant_access();
}

}  // namespace qcalc
