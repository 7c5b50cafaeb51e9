// The hooks by which the extension hears of the Function Arguments dialog.
#pragma once

#include <windows.h>

#include <memory>

#include "excel/wizard/wizard_dialog_windows.h"
#include "frame/callbacks/excel_window.h"

namespace quillmere {

/// A hook of Windows on the current thread, installed while this lives.
class InstalledHook {
 public:
  /// `name` is the kind's, for the text of the failure: CXlRuntimeException.
  InstalledHook(int kind, XStringView name, HOOKPROC procedure);
  InstalledHook(const InstalledHook&) = delete;
  InstalledHook& operator=(const InstalledHook&) = delete;
  ~InstalledHook() { UnhookWindowsHookEx(hook_); }

 private:
  HHOOK hook_;
};

/// Watches what is sent to the windows of Excel's main thread, and the keyboard, from its making to its end, after
/// which nothing of the extension is left. There is at most one in the process. The hooks' procedures are called for
/// all that goes on in Excel: they pass over everything else at once, and otherwise only note it.
class CWizardHook {
 public:
  /// Installs the hooks on this thread. CXlRuntimeException when there is one already, or when Windows refuses.
  CWizardHook(WindowHandle excelWindow, int excelVersion);
  CWizardHook(const CWizardHook&) = delete;
  CWizardHook& operator=(const CWizardHook&) = delete;

 private:
  /// Takes the one place of the process.
  struct OnlyOne {
    explicit OnlyOne(CWizardHook& hook);
    ~OnlyOne();
  };

  /// The window to which all that is noted is posted.
  class Desk final : public CWizardWindow {
   public:
    Desk(CWizardHook& hook, const WindowClass& windowClass);

   private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CWizardHook& hook_;
  };

  static LRESULT CALLBACK OnSent(int code, WPARAM wParam, LPARAM lParam) noexcept;
  static LRESULT CALLBACK OnKey(int code, WPARAM wParam, LPARAM lParam) noexcept;

  void Note(const CWPRETSTRUCT& sent) noexcept;
  bool TakesKey(UINT key, LPARAM details);
  bool IsWizard(HWND window) const;
  void OnPosted(UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  void HandlePosted(UINT message, WPARAM wParam, LPARAM lParam);
  void Forget() noexcept;

  static CWizardHook* installed;

  const OnlyOne onlyOne_;
  const WindowHandle excelWindow_;
  const int excelVersion_;
  const CXlWizExUIFunctionRegistry registry_;
  const WizardClasses classes_;
  const Desk desk_;
  std::unique_ptr<CWizardDialog> dialog_;
  bool lookPosted_ = false;   ///< one look answers for all that happened before it
  bool handling_ = false;     ///< a message is being handled, in which others may arrive
  bool swallowsAlt_ = false;  ///< the Alt key was pressed for the list: its release is not for the dialog's menu
  const InstalledHook sentHook_{WH_CALLWNDPROCRET, L"WH_CALLWNDPROCRET", &OnSent};
  const InstalledHook keyboardHook_{WH_KEYBOARD, L"WH_KEYBOARD", &OnKey};
};

}  // namespace quillmere
