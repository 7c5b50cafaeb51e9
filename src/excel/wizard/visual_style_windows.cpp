#include "excel/wizard/visual_style_windows.h"

#include <commctrl.h>
#include <uxtheme.h>
#include <vsstyle.h>

#include <algorithm>
#include <utility>

#include "excel/wizard/drawing_windows.h"

namespace quillmere {
namespace {

constexpr UINT kTextFormat = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

RECT Inside(RECT place, int distance) noexcept {
  InflateRect(&place, -distance, -distance);
  return place;
}

}  // namespace

struct CVisualStyle::Functions {
  decltype(&::OpenThemeData) open;
  decltype(&::CloseThemeData) close;
  decltype(&::DrawThemeBackground) drawBackground;
  decltype(&::GetThemeBackgroundContentRect) contentRect;
  decltype(&::DrawThemeText) drawText;
  decltype(&::GetThemePartSize) partSize;

  explicit Functions(const SystemLibrary& library) noexcept
      : open(library.Find<decltype(::OpenThemeData)>("OpenThemeData")),
        close(library.Find<decltype(::CloseThemeData)>("CloseThemeData")),
        drawBackground(library.Find<decltype(::DrawThemeBackground)>("DrawThemeBackground")),
        contentRect(library.Find<decltype(::GetThemeBackgroundContentRect)>("GetThemeBackgroundContentRect")),
        drawText(library.Find<decltype(::DrawThemeText)>("DrawThemeText")),
        partSize(library.Find<decltype(::GetThemePartSize)>("GetThemePartSize")) {}

  bool AreComplete() const noexcept { return open && close && drawBackground && contentRect && drawText && partSize; }
};

/// The theme of combo boxes, open while this lives; none where the user has no visual style.
class CVisualStyle::Theme {
 public:
  Theme(const Functions* functions, HWND window) noexcept
      : functions_(functions), handle_(functions ? functions->open(window, L"COMBOBOX") : nullptr) {}
  Theme(const Theme&) = delete;
  Theme& operator=(const Theme&) = delete;
  ~Theme() {
    if (handle_) functions_->close(handle_);
  }

  explicit operator bool() const noexcept { return handle_ != nullptr; }
  HTHEME Handle() const noexcept { return handle_; }

 private:
  const Functions* functions_;
  HTHEME handle_;
};

CVisualStyle::CVisualStyle() {
  // The style's combo boxes belong to the common controls, which must be there before they are drawn.
  if (auto* const initialise = controls_.Find<decltype(::InitCommonControlsEx)>("InitCommonControlsEx")) {
    const INITCOMMONCONTROLSEX wanted{sizeof wanted, ICC_STANDARD_CLASSES};
    initialise(&wanted);
  }
  auto functions = std::make_unique<const Functions>(styles_);
  if (functions->AreComplete()) functions_ = std::move(functions);
}

CVisualStyle::~CVisualStyle() = default;

int CVisualStyle::ButtonWidth(HWND window, int height) const noexcept {
  const Theme theme(functions_.get(), window);
  const CMeasuring measuring(window);
  SIZE size{};
  if (!theme || FAILED(functions_->partSize(theme.Handle(), measuring.Context(), CP_DROPDOWNBUTTON, CBXS_NORMAL,
                                            nullptr, TS_TRUE, &size)))
    size.cx = GetSystemMetrics(SM_CXVSCROLL);
  // The system's sizes are those of its main screen; the box has the size for its own.
  return std::clamp(static_cast<int>(size.cx), height * 2 / 3, height);
}

void CVisualStyle::DrawButton(HWND window, HDC context, const RECT& place, bool pressed) const noexcept {
  FillRect(context, &place, GetSysColorBrush(COLOR_WINDOW));
  const Theme theme(functions_.get(), window);
  if (theme && SUCCEEDED(functions_->drawBackground(theme.Handle(), context, CP_DROPDOWNBUTTON,
                                                    pressed ? CBXS_PRESSED : CBXS_NORMAL, &place, nullptr)))
    return;
  RECT frame = place;
  DrawFrameControl(context, &frame, DFC_SCROLL, DFCS_SCROLLCOMBOBOX | (pressed ? DFCS_PUSHED : 0));
}

RECT CVisualStyle::ListContent(HWND window, HDC context, const RECT& place) const noexcept {
  const Theme theme(functions_.get(), window);
  RECT content{};
  if (theme && SUCCEEDED(functions_->contentRect(theme.Handle(), context, CP_BORDER, CBXS_NORMAL, &place, &content)))
    return content;
  return Inside(place, 1);
}

void CVisualStyle::DrawListBackground(HWND window, HDC context, const RECT& place) const noexcept {
  FillRect(context, &place, GetSysColorBrush(COLOR_WINDOW));
  const Theme theme(functions_.get(), window);
  if (theme && SUCCEEDED(functions_->drawBackground(theme.Handle(), context, CP_BORDER, CBXS_NORMAL, &place, nullptr)))
    return;
  FrameRect(context, &place, GetSysColorBrush(COLOR_WINDOWFRAME));
}

void CVisualStyle::WriteText(HWND window, HDC context, const RECT& place, XStringView text,
                             bool marked) const noexcept {
  RECT room = place;
  const int length = static_cast<int>(text.size());
  SetBkMode(context, TRANSPARENT);
  const Theme theme(functions_.get(), window);
  // A style has no colour for texts that fits the system's highlight.
  if (!marked && theme &&
      SUCCEEDED(functions_->drawText(theme.Handle(), context, CP_READONLY, CBXS_NORMAL, text.data(), length,
                                     kTextFormat, 0, &room)))
    return;
  SetTextColor(context, GetSysColor(marked ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
  DrawTextW(context, text.data(), length, &room, kTextFormat);
}

}  // namespace quillmere
