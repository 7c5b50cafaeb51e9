// The open list of an argument.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "excel/wizard/combo_box_windows.h"
#include "excel/wizard/drawing_windows.h"

namespace quillmere {

/// A list below its combo box, or above where the screen ends. It never takes the focus: keys reach it by way of its
/// owner. Its text is the marked entry's.
class CWizardList final : public CWizardWindow {
 public:
  /// All references outlive this. `notified` is posted what the mouse chooses. CXlRuntimeException when there is no
  /// window.
  CWizardList(const WindowClass& windowClass, const CVisualStyle& style, const CWizardComboBox& comboBox,
              HWND notified);

  /// The edit box that it was opened for.
  HWND Box() const noexcept { return box_; }
  /// Whether a combo box is the one that it was opened for, in the same place.
  bool BelongsTo(const CWizardComboBox& comboBox) const noexcept;
  /// The marked entry (0-based), if there is one.
  std::optional<std::size_t> Marked() const noexcept { return marked_; }
  void Mark(std::size_t entry);
  /// Marks the entry for which one of these keys is pressed: arrows, Home or End.
  void MarkByKey(UINT key);

 private:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  RECT Measure();
  void DrawEntry(HDC context, std::size_t entry) const noexcept;
  RECT EntryPlace(std::size_t entry) const noexcept;
  std::size_t EntryAt(LPARAM point) const noexcept;
  bool PointerMoved() noexcept;
  void Paint();

  const CVisualStyle& style_;
  const HWND box_;
  const std::span<const WizardListEntry> entries_;
  const RECT comboBoxPlace_;
  const HWND notified_;
  const CWindowFont font_;
  RECT content_{};
  int entryHeight_ = 0;
  int margin_ = 0;  ///< at either end of an entry, and between its code and its text
  int codeWidth_ = 0;
  std::optional<std::size_t> marked_;
  POINT pointer_{};
};

}  // namespace quillmere
