// What the system is told to call, and goes on calling when the library is gone.
// clang-format off
#include <windows.h>  // before all that need its types
// clang-format on
#include "tests/misbehaving/misbehaving.h"

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// Sets two hooks and takes one away, and leaves a window class and a timer.
QCALC_EXPORT XLOPER12* LeaveHook() {
  const HOOKPROC pass = [](int code, WPARAM first, LPARAM second) {
    return CallNextHookEx(nullptr, code, first, second);
  };
  SetWindowsHookExW(WH_KEYBOARD, pass, nullptr, GetCurrentThreadId());
  UnhookWindowsHookEx(SetWindowsHookExW(WH_CALLWNDPROCRET, pass, nullptr, GetCurrentThreadId()));
  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  description.lpfnWndProc = DefWindowProcW;
  for (const wchar_t* name : {L"misbehaving.left", L"misbehaving.gone"}) {
    description.lpszClassName = name;
    RegisterClassExW(&description);
  }
  UnregisterClassW(L"misbehaving.gone", nullptr);
  SetTimer(nullptr, 0, USER_TIMER_MAXIMUM, nullptr);
  return misbehaving::Owned(misbehaving::Number(1));
}
