// The extension's own windows.
#pragma once

#include <windows.h>

#include "xlcall/xchar.h"

namespace quillmere {

/// Raises CXlRuntimeException with that text and Windows' last error.
[[noreturn]] void ThrowLastError(XStringView failure);

/// A window class of this library, registered while this lives. All its windows are CWizardWindow's.
class WindowClass {
 public:
  /// `name` is a literal. CXlRuntimeException when Windows refuses it.
  explicit WindowClass(const wchar_t* name);
  WindowClass(const WindowClass&) = delete;
  WindowClass& operator=(const WindowClass&) = delete;
  ~WindowClass();

  const wchar_t* Name() const noexcept { return name_; }

 private:
  const wchar_t* name_;
};

/// The classes of the extension, registered while it is installed.
struct WizardClasses {
  WindowClass hook{L"QuillmereWizardHook"};
  WindowClass comboBox{L"QuillmereWizardComboBox"};
  WindowClass list{L"QuillmereWizardList"};
};

/// What the extension's windows post to the hook's, where all the work is done: neither in a hook procedure nor while a
/// window that the work may destroy handles a message.
enum WizardMessage : UINT {
  kDialogShown = WM_APP,  ///< a window (wParam) of a dialog's class was shown
  kLookAgain,             ///< something happened to the dialog
  kKeyTaken,              ///< a key (wParam) was taken from the dialog, with the Alt key held or not (lParam)
  kOpenList,              ///< the list of an edit box (wParam) is wanted
  kTakeEntry,             ///< an entry (wParam, 0-based) of the open list was chosen
  kLeaveList,             ///< the open list is to go
};

/// A window that lives no longer than this object, and may be destroyed before it by its parent. Nothing leaves its
/// procedure as an exception.
class CWizardWindow {
 public:
  CWizardWindow(const CWizardWindow&) = delete;
  CWizardWindow& operator=(const CWizardWindow&) = delete;
  virtual ~CWizardWindow();

  /// Null once the window is gone.
  HWND Handle() const noexcept { return handle_; }

 protected:
  CWizardWindow() = default;

  /// Makes the window. `place` is in the coordinates of a child's parent, else of the screen. CXlRuntimeException when
  /// Windows refuses it.
  void Create(const WindowClass& windowClass, DWORD extendedStyle, DWORD style, HWND parent, const RECT& place);

  /// Answers a message as a window procedure does.
  virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;

 private:
  friend class WindowClass;
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  HWND handle_ = nullptr;
};

}  // namespace quillmere
