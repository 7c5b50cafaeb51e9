// Drawing in the visual style of the system; plainly where there is none.
#pragma once

#include <windows.h>

#include <memory>

#include "excel/system_library_windows.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// How a combo box looks. Contexts have the font selected that texts are to be in. A marked text stands on the system's
/// highlight.
class CVisualStyle {
 public:
  CVisualStyle();
  ~CVisualStyle();

  /// The width of the button of a combo box as high as `height`, in pixels.
  int ButtonWidth(HWND window, int height) const noexcept;
  void DrawButton(HWND window, HDC context, const RECT& place, bool pressed) const noexcept;
  /// The part of a list's place that its border leaves.
  RECT ListContent(HWND window, HDC context, const RECT& place) const noexcept;
  void DrawListBackground(HWND window, HDC context, const RECT& place) const noexcept;
  void WriteText(HWND window, HDC context, const RECT& place, XStringView text, bool marked) const noexcept;

 private:
  struct Functions;
  class Theme;

  SystemLibrary controls_{L"Comctl32.dll"};
  SystemLibrary styles_{L"UxTheme.dll"};
  std::unique_ptr<const Functions> functions_;  ///< null where Windows has no visual styles
};

}  // namespace quillmere
