// Values that no function may return.
#include <limits>

#include "tests/misbehaving/misbehaving.h"

using namespace misbehaving;

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// `which` chooses one of many values that no function may return.
QCALC_EXPORT XLOPER12* BadValue(std::int32_t which) {
  static XLOPER12 element;
  static XLOPER12 result;
  static XCHAR longText[2];
  longText[0] = static_cast<XCHAR>(40'000);
  element = Number(1);
  result = OfType(xltypeMulti);
  result.val.array.lparray = &element;
  result.val.array.rows = 1;
  result.val.array.columns = 1;
  switch (which) {
    case 1:
      return &(result = OfType(0x0200));
    case 2:
      return &(result = OfType(xltypeFlow));
    case 3:
      return &(result = OfType(xltypeBigData));
    case 4:
      return &(result = Number(std::numeric_limits<double>::quiet_NaN()));
    case 5:
      return &(result = OfType(xltypeStr));
    case 6:
      result = OfType(xltypeStr);
      result.val.str = longText;
      return &result;
    case 7:
      result.val.array.rows = 0;
      return &result;
    case 8:
      element = result;
      return &result;
    case 9:
      element.xltype |= xlbitDLLFree;
      return &result;
    case 10:
      element = Number(std::numeric_limits<double>::infinity());
      return &result;
    case 11:
      result = OfType(xltypeBool);
      result.val.xbool = 7;
      return &result;
    case 12:
      result = OfType(xltypeErr);
      result.val.err = -1;
      return &result;
    case 13:
      result = OfType(xltypeSRef);
      result.val.sref.count = 1;
      result.val.sref.ref = {5, 4, 0, 0};
      return &result;
    case 14:
      return &(result = OfType(xltypeNum | 0x2000));
    case 15:
      result = OfType(xltypeRef);
      result.val.mref = {&firstCell, 0xBAD};
      return &result;
    case 16:
      result = OfType(xltypeSRef);
      result.val.sref.count = 1;
      return &result;
    default:
      return nullptr;
  }
}
