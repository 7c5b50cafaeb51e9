// Memory of the host's and its own that the add-in treats wrongly.
#include <atomic>
#include <cstdlib>
#include <thread>
#include <utility>

#include "tests/misbehaving/misbehaving.h"

using namespace misbehaving;

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

QCALC_EXPORT XLOPER12* KeepLent() {
  LentText();
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* FreeTwice() {
  XLOPER12 name = LentText();
  XLOPER12 copy = name;
  CallExcel(xlFree, nullptr, {&name});
  CallExcel(xlFree, nullptr, {&copy});
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* FreeEmptied() {
  XLOPER12 name = LentText();
  CallExcel(xlFree, nullptr, {&name});
  CallExcel(xlFree, nullptr, {&name});
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* FreeForeign() {
  XLOPER12 own = Text(XTEXT("mine"));
  XCHAR* units = own.val.str;
  CallExcel(xlFree, nullptr, {&own});
  delete[] units;
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* WriteAfterFree() {
  XLOPER12 name = LentText();
  XCHAR* units = name.val.str;
  CallExcel(xlFree, nullptr, {&name});
  units[1] = 'x';
  return Owned(Number(1));
}

/// Writes a unit past the end of a text: of the argument, or of one of its own lent by the host when that is none.
QCALC_EXPORT XLOPER12* WritePast(XLOPER12* argument) {
  XLOPER12 name = argument->xltype == xltypeStr ? *argument : LentText();
  name.val.str[name.val.str[0] + 2] = 'x';
  if (argument->xltype != xltypeStr) CallExcel(xlFree, nullptr, {&name});
  return Owned(Number(1));
}

/// `which` chooses one of several values whose memory is not what they say; from 8 on it is the type, 8 or 64, of an
/// answer of Excel's that has been given back.
QCALC_EXPORT XLOPER12* BadMemory(std::int32_t which) {
  static XLOPER12 result;
  XLOPER12 text = Text(XTEXT("ab"));
  text.val.str[0] = 9;
  if (which == 1) return Owned(text);
  delete[] std::exchange(forgotten, text.val.str);
  if (which == 2) return Owned({{.array = {new XLOPER12[1]{Number(1)}, 1'000'000, 1}}, xltypeMulti});
  if (which == 3) return Owned({{.array = {new XLOPER12[1]{text}, 1, 1}}, xltypeMulti});
  lentElement = result = LentText();
  if (which == 4) return Owned({{.array = {&lentElement, 1, 1}}, xltypeMulti});
  CallExcel(xlFree, nullptr, {&lentElement});
  if (which == 6) lentElement = std::exchange(result, {{.array = {&lentElement, 1, 1}}, xltypeMulti});
  if (which <= 6) return &result;
  XLOPER12 caller = OfType(xltypeNil), type = Integer(which);
  CallExcel(xlfCaller, &caller, {});
  CallExcel(xlCoerce, &result, {&caller, &type});
  XLOPER12 copy = result;
  CallExcel(xlFree, nullptr, {&caller, &copy});
  return &result;
}

/// A text that xlAutoFree12 does not free; with `tells` its address, for the test to free it.
QCALC_EXPORT XLOPER12* KeepOwn(std::uint16_t tells) {
  if (tells) return Owned(Number(static_cast<double>(reinterpret_cast<std::uintptr_t>(unfreed))));
  unfreed = static_cast<XLOPER12*>(std::calloc(1, sizeof(XLOPER12)));
  unfreed->val.str = static_cast<XCHAR*>(std::calloc(1, sizeof(XCHAR)));
  unfreed->xltype = xltypeStr | xlbitDLLFree;
  return unfreed;
}

QCALC_EXPORT XLOPER12* ChangeArgument(XLOPER12*, XLOPER12* argument) {
  if ((argument->xltype & 0x0FFF) == xltypeMulti)
    argument->val.array.lparray[0].val.num = 99;
  else
    argument->val.num = 99;
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* BothBits() {
  static XLOPER12 result;
  result = Number(1);
  result.xltype |= xlbitXLFree | xlbitDLLFree;
  return &result;
}

QCALC_EXPORT XLOPER12* FreeNotLent() {
  static XCHAR units[] = {2, 'o', 'k'};
  static XLOPER12 result;
  result = OfType(xltypeStr | xlbitXLFree);
  result.val.str = units;
  return &result;
}

/// The library has no xlAutoFree that such a result could be given to.
QCALC_EXPORT XLOPER* Owned4() {
  static XLOPER result;
  result.xltype = xltypeBool | xlbitDLLFree;
  return &result;
}

QCALC_EXPORT XLOPER12* ForgetBit() {
  static XLOPER12 result;
  result = Text(XTEXT("lost"));
  forgotten = result.val.str;
  return &result;
}

/// One static array, which two threads that call at once get at once; it takes the host a while to copy.
QCALC_EXPORT XLOPER12* StaticResult() {
  static std::vector<XLOPER12> elements(kXlMaxRows, Number(1));
  static XLOPER12 result{{.array = {elements.data(), kXlMaxRows, 1}}, xltypeMulti};
  // No std::barrier: on Windows this library's may let a waiter miss the moment.
  static std::atomic<unsigned> calls{0};
  const unsigned mine = ++calls;
  while (calls < mine + mine % 2) std::this_thread::yield();
  return &result;
}
