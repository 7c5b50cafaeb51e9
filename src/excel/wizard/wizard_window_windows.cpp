#include "excel/wizard/wizard_window_windows.h"

#include <charconv>
#include <iterator>

#include "frame/errors/exceptions.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace quillmere {
namespace {

HINSTANCE ThisLibrary() noexcept { return reinterpret_cast<HINSTANCE>(&__ImageBase); }

}  // namespace

void ThrowLastError(XStringView failure) {
  char digits[2 * sizeof(DWORD)];
  char* const end = std::to_chars(digits, std::end(digits), GetLastError(), 16).ptr;
  throw CXlRuntimeException(XString(failure) + L". hr=" + XString(digits, end));
}

WindowClass::WindowClass(const wchar_t* name) : name_(name) {
  WNDCLASSEXW described{};
  described.cbSize = sizeof described;
  described.lpfnWndProc = &CWizardWindow::Procedure;
  described.hInstance = ThisLibrary();
  described.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  described.lpszClassName = name;
  if (!RegisterClassExW(&described)) ThrowLastError(L"RegisterClassEx failed");
}

WindowClass::~WindowClass() { UnregisterClassW(name_, ThisLibrary()); }

CWizardWindow::~CWizardWindow() {
  if (!handle_) return;
  // Nobody is left to answer what the window is told while it goes.
  SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
  DestroyWindow(handle_);
}

void CWizardWindow::Create(const WindowClass& windowClass, DWORD extendedStyle, DWORD style, HWND parent,
                           const RECT& place) {
  handle_ =
      CreateWindowExW(extendedStyle, windowClass.Name(), L"", style, place.left, place.top, place.right - place.left,
                      place.bottom - place.top, parent, nullptr, ThisLibrary(), nullptr);
  if (!handle_) ThrowLastError(L"CreateWindowEx failed");
  SetWindowLongPtrW(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

LRESULT CALLBACK CWizardWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  if (auto* const self = reinterpret_cast<CWizardWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA))) {
    try {
      if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self->handle_ = nullptr;
      } else {
        return self->OnMessage(message, wParam, lParam);
      }
    } catch (...) {
      // Excel is told nothing: it could do nothing about it.
    }
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace quillmere
