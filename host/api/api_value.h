// What Excel's C API carries: the values of cells and formulas, and a few kinds that exist only there.
#pragma once

#include <cstdint>
#include <variant>

#include "host/values/value.h"

namespace qcalc {

/// A 32-bit integer (xltypeInt): masks, handles of windows, results of xlCoerce.
struct ApiInteger {
  std::int32_t number;
};

/// A pointer without data (xltypeBigData): what xlGetInstPtr answers.
struct ApiHandle {
  void* pointer;
};

/// A reference that names a sheet and no cells: what xlSheetId answers.
struct ApiSheet {
  IDSHEET sheet;
};

/// Cells as a reference with their sheet's id, whatever sheet is current: what xlCoerce answers when asked for one.
struct ApiSheetReference {
  Reference reference;
};

using ApiValue = std::variant<Value, ApiInteger, ApiHandle, ApiSheet, ApiSheetReference>;

/// The id of the sheet that the value names, 0 when it names none.
inline IDSHEET SheetOf(const ApiValue& value) {
  if (const auto* sheet = std::get_if<ApiSheet>(&value)) return sheet->sheet;
  if (const auto* full = std::get_if<ApiSheetReference>(&value)) return full->reference.sheet;
  const auto* plain = std::get_if<Value>(&value);
  return plain && plain->IsReference() ? plain->AsReference().sheet : 0;
}

}  // namespace qcalc
