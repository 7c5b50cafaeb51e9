#include "excel/wizard/combo_box_windows.h"

#include "excel/wizard/dialog_reader_windows.h"
#include "excel/wizard/drawing_windows.h"
#include "frame/text/white_space.h"

namespace quillmere {
namespace {

void SetWidth(HWND window, int width) noexcept {
  SetWindowPos(window, nullptr, 0, 0, width, HeightOf(PlaceOf(window)), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// A place on the screen in the coordinates of a window's client area.
RECT InClientOf(HWND window, RECT place) noexcept {
  MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

}  // namespace

CWizardComboBox::CWizardComboBox(const WindowClass& windowClass, const CVisualStyle& style, HWND box,
                                 const CXlWizExUIListProvider& list, HWND notified)
    : style_(style), box_(box), list_(list), notified_(notified) {
  Create(windowClass, WS_EX_NOPARENTNOTIFY, WS_CHILD | WS_CLIPSIBLINGS, GetParent(box), RECT{});
  Follow();
}

CWizardComboBox::~CWizardComboBox() {
  if (givenWidth_ != 0 && WidthOf(PlaceOf(box_)) == givenWidth_) SetWidth(box_, fullWidth_);
}

bool CWizardComboBox::HoldsNoReference() const {
  const XString text = TextOf(box_);
  return TrimWhiteSpace(text).empty() || list_.EntryOf(text).has_value();
}

RECT CWizardComboBox::Place() const noexcept {
  RECT place = PlaceOf(box_);
  place.right = place.left + fullWidth_;
  return place;
}

RECT CWizardComboBox::ButtonPlace() const noexcept {
  RECT place = Place();
  place.left += givenWidth_;
  return place;
}

void CWizardComboBox::Follow() noexcept {
  const RECT box = PlaceOf(box_);
  if (WidthOf(box) != givenWidth_) {
    fullWidth_ = WidthOf(box);
    givenWidth_ = fullWidth_ - style_.ButtonWidth(box_, HeightOf(box));
    SetWidth(box_, givenWidth_);
  }
  const RECT wanted = ButtonPlace();
  const RECT present = PlaceOf(Handle());
  if (EqualRect(&wanted, &present) && IsWindowVisible(Handle())) return;
  const RECT place = InClientOf(GetParent(Handle()), wanted);
  SetWindowPos(Handle(), box_, place.left, place.top, WidthOf(place), HeightOf(place), SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void CWizardComboBox::ShowPressed(bool pressed) noexcept {
  pressed_ = pressed;
  InvalidateRect(Handle(), nullptr, FALSE);
}

LRESULT CWizardComboBox::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: {
      const CPainting painting(Handle());
      RECT place{};
      GetClientRect(Handle(), &place);
      style_.DrawButton(Handle(), painting.Context(), place, pressed_);
      return 0;
    }
    case WM_MOUSEACTIVATE:
      return MA_NOACTIVATE;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      PostMessageW(notified_, kOpenList, reinterpret_cast<WPARAM>(box_), 0);
      return 0;
    case WM_THEMECHANGED:
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    default:
      return DefWindowProcW(Handle(), message, wParam, lParam);
  }
}

}  // namespace quillmere
