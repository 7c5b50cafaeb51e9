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
  result = {{.array = {&element, 1, 1}}, xltypeMulti};
  if (which == 1) result = OfType(0x0200);
  if (which == 2) result = OfType(xltypeFlow);
  if (which == 3) result = OfType(xltypeBigData);
  if (which == 4) result = Number(std::numeric_limits<double>::quiet_NaN());
  if (which == 5 || which == 6) result = OfType(xltypeStr);
  if (which == 6) result.val.str = longText;
  if (which == 7) result.val.array.rows = 0;
  if (which == 8) element = result;
  if (which == 9) element.xltype |= xlbitDLLFree;
  if (which == 10) element = Number(std::numeric_limits<double>::infinity());
  if (which == 11) result = {{.xbool = 7}, xltypeBool};
  if (which == 12) result = {{.err = -1}, xltypeErr};
  if (which == 13) result = {{.sref = {1, {5, 4, 0, 0}}}, xltypeSRef};
  if (which == 14) result = OfType(xltypeNum | 0x2000);
  if (which == 15) result = {{.mref = {&firstCell, 0xBAD}}, xltypeRef};
  if (which == 16) result = {{.sref = {1, {}}}, xltypeSRef};
  if (which == 17) result.val.array.rows = 2'000'000;
  return which <= 17 ? &result : nullptr;
}
