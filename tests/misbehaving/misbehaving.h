// An add-in that breaks the rules of Excel's C API, one rule a function, for the host's own tests: what its files
// share.
#pragma once

#include <initializer_list>
#include <vector>

#include "host/library/export.h"
#include "xlcall/callback_list.h"

namespace misbehaving {

// Not inline: one definition for the whole process would keep the library in memory.
extern XlMdCallBack12 callback;
extern bool callsBackWhenFreeing;
extern XLOPER12 freeCount;
extern std::vector<void*> keptBlocks;
extern XCHAR* forgotten;  ///< freed at the end, so that the leak checker stays out of it
extern XLMREF12 firstCell;
extern XLOPER12 lentElement;  ///< a text of the host's in an array; xlAutoFree12 gives it back
extern XLOPER12* unfreed;     ///< which xlAutoFree12 passes over

int CallExcel(int number, XLOPER12* result, std::initializer_list<XLOPER12*> arguments);

XLOPER12 OfType(std::uint32_t type);
XLOPER12 Number(double number);
XLOPER12 Integer(std::int32_t number);
/// A text of which the caller owns the units.
XLOPER12 Text(XStringView text);

/// A result that the host gives back through xlAutoFree12, as all results here that own memory do by rights.
XLOPER12* Owned(const XLOPER12& oper);

/// The name of the calling sheet, lent by the host.
XLOPER12 LentText();

/// What a callback returned, or -1 when it failed and did not set its result to #VALUE!.
int CodeOf(int code, const XLOPER12& result);

}  // namespace misbehaving
