// What formulas keep between calls.
#pragma once

#include "frame/app/hooks.h"

namespace quillmere::workbook {

/// Forgets all that formulas have kept.
IXllCloseHook& FormulaMemoryCloseHook() noexcept;

}  // namespace quillmere::workbook
