#include "excel/wizard/drawing_windows.h"

#include "excel/system_library_windows.h"

namespace quillmere {
namespace {

/// The dots an inch of the screen that a window is on, and those that the system measures its own settings in.
struct Resolution {
  int window;
  int system;
};

/// Older versions of Windows know the one of the system alone.
Resolution ResolutionOf(HWND window) noexcept {
  const CMeasuring screen(nullptr);
  const int system = GetDeviceCaps(screen.Context(), LOGPIXELSY);
  const SystemLibrary user(L"user32.dll");
  auto* const dpiOf = user.Find<UINT WINAPI(HWND)>("GetDpiForWindow");
  return {dpiOf ? static_cast<int>(dpiOf(window)) : system, system};
}

}  // namespace

CWindowFont::CWindowFont(HWND window) noexcept
    : told_(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0))) {
  if (told_) return;
  NONCLIENTMETRICSW settings{};
  settings.cbSize = sizeof settings;
  if (!SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof settings, &settings, 0)) return;
  const Resolution resolution = ResolutionOf(window);
  settings.lfMessageFont.lfHeight = MulDiv(settings.lfMessageFont.lfHeight, resolution.window, resolution.system);
  own_ = CreateFontIndirectW(&settings.lfMessageFont);
}

CWindowFont::~CWindowFont() {
  if (own_) DeleteObject(own_);
}

}  // namespace quillmere
