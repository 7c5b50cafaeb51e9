#include "excel/wizard/wizard_hook_windows.h"

#include <utility>

#include "excel/class_name_windows.h"
#include "excel/wizard/formula_wizard_detector.h"
#include "frame/call/plain_call.h"
#include "frame/errors/exceptions.h"

namespace quillmere {
namespace {

/// Excel draws what the dialog shows by itself: some of its changes send no window anything.
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMilliseconds = 250;
/// Bits of a key's details: the key was released; the Alt key is held.
constexpr LPARAM kReleased = LPARAM{1} << 31;
constexpr LPARAM kWithAlt = LPARAM{1} << 29;

/// Whether a message tells that its window may be seen from now on.
bool ShowsWindow(const CWPRETSTRUCT& sent) noexcept {
  switch (sent.message) {
    case WM_SHOWWINDOW:
      return sent.wParam != FALSE;
    case WM_ACTIVATE:
      return LOWORD(sent.wParam) != WA_INACTIVE;
    case WM_WINDOWPOSCHANGED:
      return (reinterpret_cast<const WINDOWPOS*>(sent.lParam)->flags & SWP_SHOWWINDOW) != 0;
    default:
      return false;
  }
}

/// Whether a message may tell that the dialog shows something else, or has gone.
bool ChangesDialog(UINT message) noexcept {
  switch (message) {
    case WM_SHOWWINDOW:
    case WM_WINDOWPOSCHANGED:
    case WM_ACTIVATE:
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_SETTEXT:
    case WM_SETFONT:
    case WM_COMMAND:
    case WM_VSCROLL:
    case WM_DESTROY:
      return true;
    default:
      return false;
  }
}

CXlWizExUIFunctionRegistry DeclaredFunctions() {
  CXlWizExUIFunctionRegistry registry([](XStringView text) { OutputDebugStringW(XString(text).c_str()); });
  registry.AddDeclared();
  return registry;
}

}  // namespace

InstalledHook::InstalledHook(int kind, XStringView name, HOOKPROC procedure)
    : hook_(SetWindowsHookExW(kind, procedure, nullptr, GetCurrentThreadId())) {
  if (!hook_) ThrowLastError(L"SetWindowsHookEx failed for " + XString(name));
}

// ---- Installing

CWizardHook* CWizardHook::installed = nullptr;

CWizardHook::OnlyOne::OnlyOne(CWizardHook& hook) {
  if (installed) throw CXlRuntimeException(L"An instance of CWizardHook is already installed");
  installed = &hook;
}

CWizardHook::OnlyOne::~OnlyOne() { installed = nullptr; }

CWizardHook::CWizardHook(WindowHandle excelWindow, int excelVersion)
    : onlyOne_(*this),
      excelWindow_(excelWindow),
      excelVersion_(excelVersion),
      registry_(DeclaredFunctions()),
      desk_(*this, classes_.hook) {}

CWizardHook::Desk::Desk(CWizardHook& hook, const WindowClass& windowClass) : hook_(hook) {
  Create(windowClass, 0, 0, HWND_MESSAGE, RECT{});
}

// ---- The hooks' procedures

LRESULT CALLBACK CWizardHook::OnSent(int code, WPARAM wParam, LPARAM lParam) noexcept {
  if (code == HC_ACTION && installed) installed->Note(*reinterpret_cast<const CWPRETSTRUCT*>(lParam));
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK CWizardHook::OnKey(int code, WPARAM wParam, LPARAM lParam) noexcept {
  bool takes = false;
  try {
    takes =
        code == HC_ACTION && installed && installed->dialog_ && installed->TakesKey(static_cast<UINT>(wParam), lParam);
  } catch (...) {
    // The key is Excel's then.
  }
  const LRESULT next = CallNextHookEx(nullptr, code, wParam, lParam);
  return takes ? TRUE : next;
}

void CWizardHook::Note(const CWPRETSTRUCT& sent) noexcept {
  if (!ChangesDialog(sent.message)) return;
  if (dialog_ && (sent.hwnd == dialog_->Handle() || IsChild(dialog_->Handle(), sent.hwnd))) {
    if (!lookPosted_) lookPosted_ = PostMessageW(desk_.Handle(), kLookAgain, 0, 0) != FALSE;
  } else if (ShowsWindow(sent) && CXlFormulaWizardDetector::IsDialogClass(ClassName(sent.hwnd).View())) {
    PostMessageW(desk_.Handle(), kDialogShown, reinterpret_cast<WPARAM>(sent.hwnd), 0);
  }
}

bool CWizardHook::TakesKey(UINT key, LPARAM details) {
  if ((details & kReleased) != 0) return key == VK_MENU && std::exchange(swallowsAlt_, false);
  const bool withAlt = (details & kWithAlt) != 0;
  const bool takes = dialog_->TakesKey(key, withAlt);
  if (takes && withAlt) swallowsAlt_ = true;
  return takes;
}

// ---- What was posted

LRESULT CWizardHook::Desk::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_TIMER || (message >= kDialogShown && message <= kLeaveList))
    hook_.OnPosted(message, wParam, lParam);
  return DefWindowProcW(Handle(), message, wParam, lParam);
}

void CWizardHook::OnPosted(UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  if (message == kLookAgain) lookPosted_ = false;
  if (handling_) return;
  handling_ = true;
  const auto handle = [=, this] { return HandlePosted(message, wParam, lParam), 0; };
  const auto forget = [this] { return Forget(), 0; };
  // Where something fails, be it by a fault of the processor, the dialog is as Excel made it.
  if (CallPlain(handle) == kPlainCallFailed) CallPlain(forget);
  handling_ = false;
}

void CWizardHook::HandlePosted(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kDialogShown) {
    const HWND window = reinterpret_cast<HWND>(wParam);
    if ((dialog_ && dialog_->IsOpen()) || !IsWizard(window)) return;
    dialog_ = std::make_unique<CWizardDialog>(window, registry_, classes_, desk_.Handle());
    SetTimer(desk_.Handle(), kTimer, kTimerMilliseconds, nullptr);
  }
  if (!dialog_) return;
  if (!dialog_->IsOpen()) return Forget();
  switch (message) {
    case kKeyTaken:
      return dialog_->HandleKey(static_cast<UINT>(wParam), lParam != 0);
    case kOpenList:
      return dialog_->OpenList(reinterpret_cast<HWND>(wParam));
    case kTakeEntry:
      return dialog_->Take(wParam);
    case kLeaveList:
      return dialog_->CloseList();
    default:
      return dialog_->Look();
  }
}

bool CWizardHook::IsWizard(HWND window) const {
  DWORD process = 0;
  if (!IsWindowVisible(window) || !GetWindowThreadProcessId(window, &process)) return false;
  const ClassName className(window);
  const XString title = TextOf(window);
  return CXlFormulaWizardDetector::IsWizard({.processId = process,
                                             .ownProcessId = GetCurrentProcessId(),
                                             .parent = reinterpret_cast<WindowHandle>(GetParent(window)),
                                             .excelWindow = excelWindow_,
                                             .className = className.View(),
                                             .title = title,
                                             .excelVersion = excelVersion_});
}

void CWizardHook::Forget() noexcept {
  KillTimer(desk_.Handle(), kTimer);
  dialog_.reset();
}

}  // namespace quillmere
