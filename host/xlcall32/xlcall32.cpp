// The stand-in for XLCALL32.DLL: the 8-bit entry points that Excel's own library gives an add-in, forwarded to the
// program that loaded it.
#include <windows.h>

#include <cstdarg>

#include "host/library/export.h"
#include "xlcall/xlcall.h"

namespace {

template <typename Function>
Function FindInProgram(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name)));
}

}  // namespace

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

// In place of the runtime's, of which nothing is used: that frees memory when the program ends, and waits for ever if a
// thread was ended while it did the same.
extern "C" BOOL WINAPI XlcallEntry(HINSTANCE, DWORD, LPVOID) { return TRUE; }

QCALC_EXPORT int Excel4v(int xlfn, XLOPER* result, int count, XLOPER** arguments) {
  const auto forward = FindInProgram<XlExcel4v>("Excel4v");
  return forward ? forward(xlfn, result, count, arguments) : xlretFailed;
}

QCALC_EXPORT int Excel4(int xlfn, XLOPER* result, int count, ...) {
  if (count < 0 || count > kXlMaxArguments) return xlretInvCount;
  XLOPER* arguments[kXlMaxArguments];
  va_list list;
  va_start(list, count);
  for (int i = 0; i < count; ++i) arguments[i] = va_arg(list, XLOPER*);
  va_end(list);
  return Excel4v(xlfn, result, count, arguments);
}

QCALC_EXPORT int XLCallVer() {
  const auto forward = FindInProgram<int (*)()>("XLCallVer");
  return forward ? forward() : 0;
}
