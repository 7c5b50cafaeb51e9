#include "excel/wizard/list_window_windows.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "excel/wizard/dialog_reader_windows.h"

namespace quillmere {
namespace {

/// The part of the screen around a place that windows may cover.
RECT ScreenAround(const RECT& place) noexcept {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  return GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &info) ? info.rcWork : place;
}

int WidthOfText(HDC context, const XString& text) noexcept {
  SIZE size{};
  GetTextExtentPoint32W(context, text.data(), static_cast<int>(text.size()), &size);
  return size.cx;
}

/// A place of that size below a combo box, moved onto the screen.
RECT PlaceBeside(const RECT& comboBox, SIZE size) noexcept {
  const RECT screen = ScreenAround(comboBox);
  const bool fitsBelow = comboBox.bottom + size.cy <= screen.bottom;
  const LONG top = fitsBelow ? comboBox.bottom : comboBox.top - size.cy;
  const LONG left = std::max(screen.left, std::min(comboBox.left, screen.right - size.cx));
  return {left, top, left + size.cx, top + size.cy};
}

}  // namespace

CWizardList::CWizardList(const WindowClass& windowClass, const CVisualStyle& style, const CWizardComboBox& comboBox,
                         HWND notified)
    : style_(style),
      box_(comboBox.Box()),
      entries_(comboBox.List().Entries()),
      comboBoxPlace_(comboBox.Place()),
      notified_(notified),
      font_(box_) {
  Create(windowClass, WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, WS_POPUP, GetAncestor(box_, GA_ROOT), Measure());
  if (const auto present = comboBox.List().EntryOf(TextOf(box_))) Mark(*present);
  ShowWindow(Handle(), SW_SHOWNOACTIVATE);
  // A click anywhere else closes the list, as of every other.
  SetCapture(Handle());
  GetCursorPos(&pointer_);
}

/// Works out the sizes from the font's, which are those for the screen; returns the place of the whole.
RECT CWizardList::Measure() {
  const CMeasuring measuring(box_);
  const CSelectedFont selected(measuring.Context(), font_.Handle());
  TEXTMETRICW metrics{};
  GetTextMetricsW(measuring.Context(), &metrics);
  entryHeight_ = metrics.tmHeight + metrics.tmHeight / 4;
  margin_ = metrics.tmAveCharWidth;
  int textWidth = 0;
  for (const WizardListEntry& entry : entries_) {
    codeWidth_ = std::max(codeWidth_, WidthOfText(measuring.Context(), entry.code));
    textWidth = std::max(textWidth, WidthOfText(measuring.Context(), entry.text));
  }
  const RECT inner{0, 0, std::max(codeWidth_ + textWidth + 3 * margin_, WidthOf(comboBoxPlace_)),
                   static_cast<LONG>(entries_.size()) * entryHeight_};
  const RECT without = style_.ListContent(box_, measuring.Context(), inner);
  const SIZE whole{2 * inner.right - WidthOf(without), 2 * inner.bottom - HeightOf(without)};
  content_ = style_.ListContent(box_, measuring.Context(), {0, 0, whole.cx, whole.cy});
  return PlaceBeside(comboBoxPlace_, whole);
}

bool CWizardList::BelongsTo(const CWizardComboBox& comboBox) const noexcept {
  const RECT place = comboBox.Place();
  return box_ == comboBox.Box() && entries_.data() == comboBox.List().Entries().data() &&
         EqualRect(&place, &comboBoxPlace_);
}

void CWizardList::Mark(std::size_t entry) {
  marked_ = std::min(entry, entries_.size() - 1);
  SetWindowTextW(Handle(), ShownEntry(entries_[*marked_]).c_str());
  InvalidateRect(Handle(), nullptr, FALSE);
}

void CWizardList::MarkByKey(UINT key) {
  const std::size_t last = entries_.size() - 1;
  switch (key) {
    case VK_UP:
      return Mark(marked_.value_or(0) == 0 ? 0 : *marked_ - 1);
    case VK_DOWN:
      return Mark(marked_ ? *marked_ + 1 : 0);
    case VK_HOME:
      return Mark(0);
    default:
      return Mark(last);
  }
}

RECT CWizardList::EntryPlace(std::size_t entry) const noexcept {
  const LONG top = content_.top + static_cast<LONG>(entry) * entryHeight_;
  return {content_.left, top, content_.right, top + entryHeight_};
}

/// The entry at a point of the window; beyond the last where there is none.
std::size_t CWizardList::EntryAt(LPARAM point) const noexcept {
  const POINT place{GET_X_LPARAM(point), GET_Y_LPARAM(point)};
  std::size_t entry = 0;
  for (; entry < entries_.size(); ++entry)
    if (const RECT room = EntryPlace(entry); PtInRect(&room, place)) break;
  return entry;
}

/// Whether the pointer itself moved: Windows says so too when a window appears below it.
bool CWizardList::PointerMoved() noexcept {
  POINT now{};
  GetCursorPos(&now);
  const POINT before = std::exchange(pointer_, now);
  return now.x != before.x || now.y != before.y;
}

void CWizardList::Paint() {
  const CPainting painting(Handle());
  const CSelectedFont selected(painting.Context(), font_.Handle());
  RECT whole{};
  GetClientRect(Handle(), &whole);
  style_.DrawListBackground(Handle(), painting.Context(), whole);
  for (std::size_t i = 0; i < entries_.size(); ++i) DrawEntry(painting.Context(), i);
}

/// Codes and texts stand in a column each.
void CWizardList::DrawEntry(HDC context, std::size_t entry) const noexcept {
  const bool isMarked = marked_ == entry;
  const RECT place = EntryPlace(entry);
  if (isMarked) FillRect(context, &place, GetSysColorBrush(COLOR_HIGHLIGHT));
  RECT room = place;
  room.left += margin_;
  style_.WriteText(Handle(), context, room, entries_[entry].code, isMarked);
  room.left += codeWidth_ + margin_;
  style_.WriteText(Handle(), context, room, entries_[entry].text, isMarked);
}

LRESULT CWizardList::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT:
      Paint();
      return 0;
    case WM_MOUSEACTIVATE:
      return MA_NOACTIVATE;
    case WM_MOUSEMOVE:
      if (const std::size_t entry = EntryAt(lParam); PointerMoved() && entry < entries_.size()) Mark(entry);
      return 0;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
      if (EntryAt(lParam) == entries_.size()) PostMessageW(notified_, kLeaveList, 0, 0);
      return 0;
    case WM_LBUTTONUP:
      if (const std::size_t entry = EntryAt(lParam); entry < entries_.size())
        PostMessageW(notified_, kTakeEntry, entry, 0);
      return 0;
    case WM_CAPTURECHANGED:
      PostMessageW(notified_, kLeaveList, 0, 0);
      return 0;
    default:
      return DefWindowProcW(Handle(), message, wParam, lParam);
  }
}

}  // namespace quillmere
