// The windows of a Function Arguments dialog, and what they do.
#pragma once

#include <windows.h>

#include <array>
#include <exception>
#include <optional>
#include <string>

#include "host/dialogs/dialog_elements_windows.h"
#include "host/dialogs/dialog_layout_windows.h"

namespace qcalc {

/// A window class, for as long as this lives.
class WindowClass {
 public:
  /// Throws std::runtime_error when the system does not take it.
  explicit WindowClass(WNDCLASSEXW description);
  ~WindowClass();
  WindowClass(const WindowClass&) = delete;
  WindowClass& operator=(const WindowClass&) = delete;

 private:
  ATOM atom_;
};

/// The window with its children; it is destroyed when the user closes it, or with this object. Not to be moved: the
/// window knows where it is.
class DialogWindow {
 public:
  DialogWindow(DialogContents contents, HWND owner);
  ~DialogWindow();
  DialogWindow(const DialogWindow&) = delete;
  DialogWindow& operator=(const DialogWindow&) = delete;

  /// Makes the windows and shows them. Throws std::runtime_error when one is refused.
  void Open();
  /// Null before the dialog is opened, and once it is closed.
  HWND Handle() const { return window_; }
  void Change(DialogContents contents);
  XString Outcome() const;

  /// Takes a key that is the dialog's whichever of its windows has the focus, as Excel does before a window gets it.
  bool TakesKey(const MSG& message);

  /// A child of the dialog's own making that is not as it was made; the sentence says what.
  std::optional<std::string> ChangedChild() const;
  bool IsOwn(HWND child) const;

  /// Throws what a window procedure could not.
  void RethrowFailure();
  /// How many hold on to the accessible object beside the dialog.
  ULONG StrangeReferences() const;

 private:
  /// A child as the dialog made it.
  struct Child {
    HWND window = nullptr;
    std::string name;
    RECT place{};
    LONG_PTR style = 0;
    LONG_PTR procedure = 0;
    bool isShown = false;
  };

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  static LRESULT CALLBACK BoxProcedure(HWND window, UINT message, WPARAM first, LPARAM second);
  LRESULT Answer(UINT message, WPARAM first, LPARAM second);
  void AnswerCommand(UINT notification, HWND child);
  void AnswerScroll(UINT request);
  void Paint();

  void MakeChildren();
  Child MakeChild(const wchar_t* windowClass, const wchar_t* text, DWORD style, DWORD extendedStyle, const RECT& place,
                  std::string name);
  void ShowChild(Child& child, bool isShown);
  void ShowContents();
  void FillBoxes();
  void ScrollTo(std::size_t first);
  void Redraw();
  void FocusArgument(std::size_t argument);
  void MoveFocus(bool isForward);
  void End(const XString& outcome);
  std::optional<std::size_t> BoxOf(HWND child) const;

  static constexpr std::size_t kMostBoxes = DialogPage::kMostBoxes;

  DialogContents contents_;
  const HWND owner_;
  DialogFonts fonts_;
  WindowClass dialogClass_;
  WindowClass boxClass_;
  HWND window_ = nullptr;
  DialogElements* elements_ = nullptr;
  std::array<Child, kMostBoxes> boxes_;
  Child bar_;
  Child ok_;
  Child cancel_;
  std::size_t current_ = 0;
  XString outcome_;
  std::exception_ptr failure_;
};

}  // namespace qcalc
