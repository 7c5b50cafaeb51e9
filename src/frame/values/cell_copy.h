// The one place where the memory of texts and arrays is copied, the host's included.
//
// A bad pointer from the host faults here. These functions are never inlined and hold nothing that needs a destructor,
// so that such a fault unwinds like an exception raised by the call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/values/value_memory.h"
#include "xlcall/xlcall.h"

namespace quillmere {

/// Writes a counted text: to[0] becomes `units`, then `units` units from `from`.
void CopyText(XCHAR* to, const XCHAR* from, std::size_t units);

/// Copies `units` units of a text.
void CopyUnits(XCHAR* to, const XCHAR* from, std::size_t units);

/// Makes `to` a copy of a text, in the room that it has where that suffices.
void AssignText(XString& to, XStringView text);

/// Copies `count` bytes of an 8-bit text.
void CopyBytes(char* to, const char* from, std::size_t count);

/// Copies `count` cells, their texts into `texts`. Strides count cells. Numbers that are not finite become #NUM!,
/// missing elements empty cells; what is no single cell, or a malformed text, is "Bad XLOPER type", and the cells
/// from there on are then left unset.
void CopyCells(TextArena& texts, XLOPER12* to, const XLOPER12* from, std::size_t count, std::ptrdiff_t toStride,
               std::ptrdiff_t fromStride);

/// Rows of an array, and where their cells come from. Strides, from row to row, and the step from cell to cell count
/// cells; there is one row and one column at least.
struct CellRows {
  XLOPER12* to;
  std::ptrdiff_t toStride;
  const XLOPER12* from;
  std::ptrdiff_t fromStride;
  std::ptrdiff_t step;
  std::int32_t rows;
  std::int32_t columns;
};

/// The same for rows, which would take a call each.
void CopyRows(TextArena& texts, const CellRows& rows);

}  // namespace quillmere
