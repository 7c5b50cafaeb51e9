#include "host/objects/variants_windows.h"

#include <new>

namespace qcalc {
namespace {

// CVErr(n) is 0x800A0000 + n, and the errors of cells begin at 2000.
constexpr SCODE kFirstCellError = static_cast<SCODE>(0x800A07D0);

/// The array as SAFEARRAY of variants, which is the caller's.
SAFEARRAY* ToSafeArray(const Array& array) {
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(array.Rows()), 1}, {static_cast<ULONG>(array.Columns()), 1}};
  SAFEARRAY* const safe = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (!safe) throw std::bad_alloc();
  for (LONG row = 0; row < array.Rows(); ++row)
    for (LONG column = 0; column < array.Columns(); ++column) {
      LONG place[] = {row + 1, column + 1};
      const Variant element = Variant::Of(Value::OfCell(array.At(row, column)));
      VARIANT copied = element.Get();  // which the array copies once more
      SafeArrayPutElement(safe, place, &copied);
    }
  return safe;
}

}  // namespace

Variant Variant::OfLong(LONG number) {
  Variant made;
  made.variant_.vt = VT_I4;
  made.variant_.lVal = number;
  return made;
}

Variant Variant::OfBoolean(bool truth) {
  Variant made;
  made.variant_.vt = VT_BOOL;
  made.variant_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  return made;
}

Variant Variant::OfText(XStringView text) {
  Variant made;
  made.variant_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (!made.variant_.bstrVal) throw std::bad_alloc();
  made.variant_.vt = VT_BSTR;
  return made;
}

Variant Variant::OfObject(IDispatch* object) {
  Variant made;
  made.variant_.vt = VT_DISPATCH;
  made.variant_.pdispVal = object;
  return made;
}

Variant Variant::Of(const Value& value) {
  Variant made;
  switch (value.Kind()) {
    case ValueKind::kNumber:
      made.variant_.vt = VT_R8;
      made.variant_.dblVal = value.AsNumber();
      break;
    case ValueKind::kText:
      return OfText(value.AsText());
    case ValueKind::kBoolean:
      return OfBoolean(value.AsBoolean());
    case ValueKind::kError:
      made.variant_.vt = VT_ERROR;
      made.variant_.scode = kFirstCellError + value.AsError();
      break;
    case ValueKind::kArray:
      made.variant_.parray = ToSafeArray(*value.AsArray());
      made.variant_.vt = VT_ARRAY | VT_VARIANT;
      break;
    default:
      break;
  }
  return made;
}

Value ValueOf(const VARIANT& variant) {
  switch (variant.vt) {
    case VT_BOOL:
      return Value::Boolean(variant.boolVal != VARIANT_FALSE);
    case VT_I4:
      return Value::Number(variant.lVal);
    case VT_R8:
      return Value::Number(variant.dblVal);
    case VT_BSTR:
      return Value::Text(XString(variant.bstrVal, SysStringLen(variant.bstrVal)));
    default:
      return Value::Empty();
  }
}

}  // namespace qcalc
