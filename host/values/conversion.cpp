#include "host/values/conversion.h"

#include "host/text/letter_case.h"
#include "host/values/number_reading.h"
#include "host/values/number_writing.h"

namespace qcalc {

Value ToNumber(const CellView& cell, NumberMarks marks) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      return Value::Number(0);
    case CellKind::kNumber:
      return Value::Number(cell.AsNumber());
    case CellKind::kBoolean:
      return Value::Number(cell.AsBoolean() ? 1 : 0);
    case CellKind::kText:
      return TextToNumber(cell.AsText(), marks);
    case CellKind::kError:
      break;
  }
  return Value::Error(cell.AsError());
}

Value ToText(const CellView& cell, NumberMarks marks) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      return Value::Text({});
    case CellKind::kNumber:
      return Value::Text(NumberToText(cell.AsNumber(), marks));
    case CellKind::kBoolean:
      return Value::Text(cell.AsBoolean() ? XTEXT("TRUE") : XTEXT("FALSE"));
    case CellKind::kText:
      return Value::Text(XString(cell.AsText()));
    case CellKind::kError:
      break;
  }
  return Value::Error(cell.AsError());
}

Value ToBoolean(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      return Value::Boolean(false);
    case CellKind::kNumber:
      return Value::Boolean(cell.AsNumber() != 0);
    case CellKind::kBoolean:
      return Value::Boolean(cell.AsBoolean());
    case CellKind::kText:
      if (EqualsIgnoringCase(cell.AsText(), XTEXT("TRUE"))) return Value::Boolean(true);
      if (EqualsIgnoringCase(cell.AsText(), XTEXT("FALSE"))) return Value::Boolean(false);
      return Value::Error(xlerrValue);
    case CellKind::kError:
      break;
  }
  return Value::Error(cell.AsError());
}

}  // namespace qcalc
