// Reading the Function Arguments dialog: the one place that knows how Excel shows it.
#pragma once

#include <oleacc.h>
#include <windows.h>

#include <vector>

#include "excel/system_library_windows.h"
#include "excel/wizard/dialog_arguments.h"

namespace quillmere {

/// A dialog as it is shown at the moment.
struct SeenDialog {
  DialogFacts facts;
  std::vector<HWND> boxes;  ///< the windows of the facts' boxes
};

/// The beginning of a window's text: more than any code has.
XString TextOf(HWND window);
/// The place of a window on the screen.
RECT PlaceOf(HWND window) noexcept;

/// Excel draws the labels of the dialog itself and has no windows for them: they are read by way of what it tells
/// programs for the blind. The edit boxes are windows, and so is the scroll bar of a function with more arguments than
/// boxes.
class CDialogReader {
 public:
  CDialogReader() noexcept;

  SeenDialog Read(HWND dialog) const;

 private:
  SystemLibrary accessibility_{L"oleacc.dll"};
  decltype(&::AccessibleObjectFromWindow) objectFromWindow_;
  decltype(&::AccessibleChildren) children_;

  void AddTexts(IAccessible& parent, int depth, std::vector<ShownText>& texts) const;
};

}  // namespace quillmere
