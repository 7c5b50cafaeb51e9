// The button beside an edit box of the dialog that has a list.
#pragma once

#include "excel/wizard/list_provider.h"
#include "excel/wizard/visual_style_windows.h"
#include "excel/wizard/wizard_window_windows.h"

namespace quillmere {

/// A combo box made of an edit box of the dialog: while this lives, the box is narrower by the width of a button, which
/// stands in the room that it leaves at its right end. What is typed stays readable, and nothing else of the dialog is
/// covered. The button never takes the focus.
class CWizardComboBox final : public CWizardWindow {
 public:
  /// All references outlive this. `notified` is posted what is clicked. CXlRuntimeException when there is no window.
  CWizardComboBox(const WindowClass& windowClass, const CVisualStyle& style, HWND box,
                  const CXlWizExUIListProvider& list, HWND notified);
  ~CWizardComboBox() override;

  HWND Box() const noexcept { return box_; }
  const CXlWizExUIListProvider& List() const noexcept { return list_; }
  /// Whether the box is empty or holds one of the codes.
  bool HoldsNoReference() const;
  /// Box and button together, on the screen.
  RECT Place() const noexcept;

  /// Follows the box, wherever the dialog has moved it to.
  void Follow() noexcept;
  void ShowPressed(bool pressed) noexcept;

 private:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  RECT ButtonPlace() const noexcept;

  const CVisualStyle& style_;
  const HWND box_;
  const CXlWizExUIListProvider& list_;
  const HWND notified_;
  int fullWidth_ = 0;   ///< that Excel gave the box
  int givenWidth_ = 0;  ///< that we gave it
  bool pressed_ = false;
};

}  // namespace quillmere
