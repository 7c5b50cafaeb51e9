#include "excel/wizard/dialog_reader_windows.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "excel/class_name_windows.h"
#include "excel/com/com_values_windows.h"

namespace quillmere {
namespace {

constexpr XStringView kEditBoxClass = L"EDTBX";
constexpr XStringView kScrollBarClass = L"ScrollBar";
/// The dialog's own elements, and those of a group among them.
constexpr int kMaxDepth = 2;
/// More elements than the dialog ever has.
constexpr long kMaxElements = 200;

ScreenPlace ToPlace(const RECT& place) {
  return {.left = place.left, .top = place.top, .right = place.right, .bottom = place.bottom};
}

/// Where the topmost box stands in the list of arguments. The bar counts by arguments.
std::optional<std::size_t> PositionOfScrollBar(HWND bar) {
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_POS;
  if (!GetScrollInfo(bar, SB_CTL, &info) || info.nPos < 0) return std::nullopt;
  return static_cast<std::size_t>(info.nPos);
}

/// Notes what is of use among the dialog's windows.
BOOL CALLBACK NoteWindow(HWND window, LPARAM context) noexcept {
  SeenDialog& seen = *reinterpret_cast<SeenDialog*>(context);
  try {
    if (!IsWindowVisible(window)) return TRUE;
    const ClassName className(window);
    if (className.View() == kScrollBarClass) {
      seen.facts.hasScrollBar = true;
      seen.facts.first = PositionOfScrollBar(window);
    }
    if (className.View() == kEditBoxClass) {
      seen.facts.boxes.push_back(ToPlace(PlaceOf(window)));
      seen.boxes.push_back(window);
    }
    return TRUE;
  } catch (const std::bad_alloc&) {
    seen.boxes.clear();
    return FALSE;
  }
}

void AddText(IAccessible& object, const VARIANT& element, std::vector<ShownText>& texts) {
  ComVariant name;
  name.Raw().vt = VT_BSTR;
  name.Raw().bstrVal = nullptr;
  if (FAILED(object.get_accName(element, &name.Raw().bstrVal)) || name.IsEmpty()) return;
  long left = 0;
  long top = 0;
  long width = 0;
  long height = 0;
  if (FAILED(object.accLocation(&left, &top, &width, &height, element))) return;
  const BSTR text = name.Raw().bstrVal;
  texts.push_back({.text = XString(text, SysStringLen(text)),
                   .place = {.left = left, .top = top, .right = left + width, .bottom = top + height}});
}

VARIANT ElementItself() noexcept {
  VARIANT element{};
  element.vt = VT_I4;
  element.lVal = CHILDID_SELF;
  return element;
}

}  // namespace

XString TextOf(HWND window) {
  XCHAR text[64];
  const int length = GetWindowTextW(window, text, static_cast<int>(std::size(text)));
  return {text, static_cast<std::size_t>(length)};
}

RECT PlaceOf(HWND window) noexcept {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

CDialogReader::CDialogReader() noexcept
    : objectFromWindow_(accessibility_.Find<decltype(::AccessibleObjectFromWindow)>("AccessibleObjectFromWindow")),
      children_(accessibility_.Find<decltype(::AccessibleChildren)>("AccessibleChildren")) {}

SeenDialog CDialogReader::Read(HWND dialog) const {
  SeenDialog seen;
  EnumChildWindows(dialog, &NoteWindow, reinterpret_cast<LPARAM>(&seen));
  ComReference<IAccessible> object;
  if (!seen.boxes.empty() && objectFromWindow_ && children_ &&
      SUCCEEDED(
          objectFromWindow_(dialog, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), object.Receive<void>())) &&
      object)
    AddTexts(*object, 1, seen.facts.texts);
  return seen;
}

void CDialogReader::AddTexts(IAccessible& parent, int depth, std::vector<ShownText>& texts) const {
  long count = 0;
  if (FAILED(parent.get_accChildCount(&count)) || count <= 0) return;
  std::vector<ComVariant> elements(static_cast<std::size_t>(std::min(count, kMaxElements)));
  static_assert(sizeof(ComVariant) == sizeof(VARIANT));
  long got = 0;
  if (FAILED(children_(&parent, 0, static_cast<long>(elements.size()), &elements.front().Raw(), &got))) return;
  for (ComVariant& element : elements) {
    // A part is an object of its own, or a number that its parent knows it by.
    if (element.Raw().vt == VT_I4) AddText(parent, element.Raw(), texts);
    const ComReference<IDispatch> dispatch = element.Object();
    ComReference<IAccessible> child;
    if (!dispatch || FAILED(dispatch->QueryInterface(__uuidof(IAccessible), child.Receive<void>())) || !child) continue;
    AddText(*child, ElementItself(), texts);
    if (depth < kMaxDepth) AddTexts(*child, depth + 1, texts);
  }
}

}  // namespace quillmere
