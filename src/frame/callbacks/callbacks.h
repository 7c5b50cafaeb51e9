// Calling Excel.
#pragma once

#include "frame/entry/excel_entry.h"
#include "frame/errors/exceptions.h"
#include "frame/values/lent_cells.h"
#include "frame/values/xl_oper.h"
#include "xlcall/callback_list.h"

namespace quillmere {

/// An argument of a callback; only xlFree writes to it.
inline XLOPER12* RawValue(const CXlOper& value) noexcept { return value.ForCallback(); }
inline XLOPER12* RawValue(const CXlLentCells& cells) noexcept { return cells.ForCallback(); }
inline XLOPER12* RawValue(const XLOPER12& value) noexcept { return const_cast<XLOPER12*>(&value); }

/// The out-of-line core of the calls below: `result` receives what Excel returned, or is left never set when the code
/// is not xlretSuccess.
int CallExcelWith(CXlOper& result, int xlfn, int count, XLOPER12* arguments[]) noexcept;

/// Raises CXlRuntimeException with the callback's name and the code it failed with.
[[noreturn]] void ThrowFailedCall(int xlfn, int code);

/// Calls Excel with `arguments` (CXlOper, CXlLentCells or XLOPER12) and returns its code, whatever it is. `result`,
/// released first, then owns what Excel returned; it is never set when the code is not xlretSuccess. Nothing is raised.
/// A result may still be an error value. For what is no worksheet function: opening, closing and commands.
template <class... Arguments>
int CallExcelForCode(CXlOper& result, int xlfn, const Arguments&... arguments) noexcept {
  XLOPER12* list[] = {RawValue(arguments)..., nullptr};
  return CallExcelWith(result, xlfn, static_cast<int>(sizeof...(Arguments)), list);
}

// Worksheet functions call by the three below. Each raises CXlFunctionEnd when Excel wants the function to end,
// whatever a callback that fails means to the caller.

/// The same for callers to whom any other failure is an answer.
template <class... Arguments>
int TryCallExcel(CXlOper& result, int xlfn, const Arguments&... arguments) {
  const int code = CallExcelForCode(result, xlfn, arguments...);
  if (code == xlretAbort || code == xlretUncalced) ThrowFunctionEnd();
  return code;
}

/// Calls Excel and returns what it answers; a code other than xlretSuccess is raised as CXlRuntimeException.
template <class... Arguments>
CXlOper CallExcel(int xlfn, const Arguments&... arguments) {
  CXlOper result;
  if (const int code = TryCallExcel(result, xlfn, arguments...); code != xlretSuccess) ThrowFailedCall(xlfn, code);
  return result;
}

/// The same for functions that answer #VALUE! when a callback fails: a code other than xlretSuccess is raised as
/// CXlErrorException. A result may still be an error value.
template <class... Arguments>
CXlOper CallExcelOrValueError(int xlfn, const Arguments&... arguments) {
  CXlOper result;
  if (TryCallExcel(result, xlfn, arguments...) != xlretSuccess) throw CXlErrorException(xlerrValue);
  return result;
}

}  // namespace quillmere
