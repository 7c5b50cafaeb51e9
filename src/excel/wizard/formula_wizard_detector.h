// Telling Excel's Function Arguments dialog from all other windows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/callbacks/excel_window.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// What is to be known of a top-level window.
struct WindowFacts {
  std::uint32_t processId = 0;
  std::uint32_t ownProcessId = 0;
  WindowHandle parent = 0;
  WindowHandle excelWindow = 0;  ///< Excel's main window
  XStringView className = {};    ///< its beginning
  XStringView title = {};
  int excelVersion = 0;
};

class CXlFormulaWizardDetector {
 public:
  /// Whether a window of that class may be one of Excel's dialogs.
  static bool IsDialogClass(XStringView className) noexcept;
  /// Whether a window is the Function Arguments dialog. Its title is not the same in every language: a dialog of the
  /// process that is known to be no other counts as it.
  static bool IsWizard(const WindowFacts& window) noexcept;
};

}  // namespace quillmere
