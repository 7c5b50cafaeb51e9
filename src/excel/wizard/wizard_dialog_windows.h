// The Function Arguments dialog while it is open, and what is added to it.
#pragma once

#include <memory>
#include <vector>

#include "excel/wizard/combo_box_windows.h"
#include "excel/wizard/dialog_reader_windows.h"
#include "excel/wizard/list_window_windows.h"

namespace quillmere {

/// One dialog. It has a combo box for each edit box of an argument with a list, and at most one list that is open: that
/// of the edit box with the focus, which stays there. What is destroyed with this leaves the dialog as Excel made it.
class CWizardDialog {
 public:
  /// All references outlive this. `notified` is posted what happens.
  CWizardDialog(HWND dialog, const CXlWizExUIFunctionRegistry& registry, const WizardClasses& classes, HWND notified)
      : dialog_(dialog), registry_(registry), classes_(classes), notified_(notified) {}

  HWND Handle() const noexcept { return dialog_; }
  bool IsOpen() const noexcept { return IsWindow(dialog_) && IsWindowVisible(dialog_); }

  /// Looks at what the dialog shows now, and puts the combo boxes where they belong.
  void Look();

  /// Whether a key pressed in the dialog is the extension's and not Excel's; it is posted then, to be handled. For the
  /// keyboard hook.
  bool TakesKey(UINT key, bool withAlt);
  void HandleKey(UINT key, bool withAlt);

  /// Opens the list of an edit box, if it has one still.
  void OpenList(HWND box);
  void CloseList() noexcept;
  /// Writes the code of an entry of the open list into its edit box.
  void Take(std::size_t entry);

 private:
  CWizardComboBox* ComboBoxOf(HWND box) const noexcept;
  bool TakesKeyOfList(UINT key, bool withAlt) noexcept;
  bool OpensList(UINT key, bool withAlt) const;
  void TakeMarked();

  const HWND dialog_;
  const CXlWizExUIFunctionRegistry& registry_;
  const WizardClasses& classes_;
  const HWND notified_;
  const CDialogReader reader_;
  const CVisualStyle style_;
  std::vector<std::unique_ptr<CWizardComboBox>> comboBoxes_;
  std::unique_ptr<CWizardList> list_;
  bool opening_ = false;  ///< a key that opens the list was taken, and not handled yet
};

}  // namespace quillmere
