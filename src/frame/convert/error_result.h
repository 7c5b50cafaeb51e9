// Failures as the value of a cell.
#pragma once

#include "frame/errors/exceptions.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// Sets the Excel error value that a CXlErrorException carries, and the text "#ERROR: " with the message for any other
/// exception. May run out of memory.
void WriteError(CXlOper& result, const CXlRuntimeException& error);

/// Sets the text "#ERROR: " with `message`, cut to what a cell can hold. For an Excel below version 12 it is the text
/// that is left of it as 8-bit text. May run out of memory.
void WriteErrorText(CXlOper& result, XStringView message);

/// Sets the text that reports an allocation that failed; it takes no memory.
void WriteMemoryError(CXlOper& result) noexcept;
/// The same for a result on its way back by the 8-bit interface.
void WriteMemoryError4(XLOPER& slot) noexcept;

}  // namespace quillmere
