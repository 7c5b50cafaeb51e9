// Excel's main window.
#pragma once

#include <cstdint>

namespace quillmere {

/// A window handle as Excel hands it out; 0: none.
using WindowHandle = std::intptr_t;

/// Excel's main window, asked of Excel: at opening, closing and from commands.
WindowHandle ExcelWindow() noexcept;

}  // namespace quillmere
