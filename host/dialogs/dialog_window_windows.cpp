#include "host/dialogs/dialog_window_windows.h"

#include <stdexcept>

namespace qcalc {
namespace {

constexpr const wchar_t* kDialogClass = L"bosa_sdm_XL9";
constexpr const wchar_t* kBoxClass = L"EDTBX";
constexpr DWORD kDialogStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
constexpr POINT kPlace{120, 90};

// A text that is put into a box is nothing that was typed: Excel's boxes do not tell the dialog of it.
constexpr const wchar_t* kQuietProperty = L"qcalc.quiet";

WNDPROC systemEdit = nullptr;

WNDCLASSEXW DialogClass(WNDPROC procedure) {
  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  description.lpfnWndProc = procedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = kDialogClass;
  return description;
}

WNDCLASSEXW BoxClass(WNDPROC procedure) {
  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  GetClassInfoExW(nullptr, L"EDIT", &description);
  systemEdit = description.lpfnWndProc;
  description.style &= ~static_cast<UINT>(CS_GLOBALCLASS);
  description.lpfnWndProc = procedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = kBoxClass;
  return description;
}

XString TextOf(HWND window) {
  XString text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size() + 1))));
  return text;
}

}  // namespace

WindowClass::WindowClass(WNDCLASSEXW description) : atom_(RegisterClassExW(&description)) {
  if (atom_ == 0)
    throw std::runtime_error("a window class is refused: Windows error " + std::to_string(GetLastError()));
}

WindowClass::~WindowClass() { UnregisterClassW(MAKEINTATOM(atom_), GetModuleHandleW(nullptr)); }

DialogWindow::DialogWindow(DialogContents contents, HWND owner)
    : contents_(std::move(contents)),
      owner_(owner),
      dialogClass_(DialogClass(Procedure)),
      boxClass_(BoxClass(BoxProcedure)) {}

DialogWindow::~DialogWindow() {
  if (window_) DestroyWindow(window_);
  if (elements_) elements_->Release();
}

void DialogWindow::Open() {
  RECT frame{0, 0, dialog_layout::kClient.cx, dialog_layout::kClient.cy};
  AdjustWindowRectEx(&frame, kDialogStyle, FALSE, WS_EX_DLGMODALFRAME);
  window_ = CreateWindowExW(WS_EX_DLGMODALFRAME, kDialogClass, contents_.title.c_str(), kDialogStyle, kPlace.x,
                            kPlace.y, frame.right - frame.left, frame.bottom - frame.top, owner_, nullptr,
                            GetModuleHandleW(nullptr), nullptr);
  if (!window_) throw std::runtime_error("no dialog: Windows error " + std::to_string(GetLastError()));
  elements_ = new DialogElements(window_);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  MakeChildren();
  ShowContents();
  ShowWindow(window_, SW_SHOW);
  SetForegroundWindow(window_);
  FocusArgument(0);
}

void DialogWindow::MakeChildren() {
  for (std::size_t i = 0; i < kMostBoxes; ++i)
    boxes_[i] = MakeChild(kBoxClass, L"", ES_AUTOHSCROLL, WS_EX_CLIENTEDGE, dialog_layout::Box(i),
                          "box " + std::to_string(i + 1));
  bar_ = MakeChild(L"ScrollBar", L"", SBS_VERT, 0, dialog_layout::kBar, "the scroll bar");
  ok_ = MakeChild(L"BUTTON", L"OK", BS_DEFPUSHBUTTON, 0, dialog_layout::kOk, "the button OK");
  cancel_ = MakeChild(L"BUTTON", L"Cancel", BS_PUSHBUTTON, 0, dialog_layout::kCancel, "the button Cancel");
  ShowChild(ok_, true);
  ShowChild(cancel_, true);
}

DialogWindow::Child DialogWindow::MakeChild(const wchar_t* windowClass, const wchar_t* text, DWORD style,
                                            DWORD extendedStyle, const RECT& place, std::string name) {
  const HWND child = CreateWindowExW(extendedStyle, windowClass, text, WS_CHILD | style, place.left, place.top,
                                     place.right - place.left, place.bottom - place.top, window_, nullptr,
                                     GetModuleHandleW(nullptr), nullptr);
  if (!child) throw std::runtime_error("no " + name + ": Windows error " + std::to_string(GetLastError()));
  SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.Plain()), FALSE);
  return {child, std::move(name), place, GetWindowLongPtrW(child, GWL_STYLE), GetWindowLongPtrW(child, GWLP_WNDPROC),
          false};
}

void DialogWindow::Change(DialogContents contents) {
  contents_ = std::move(contents);
  SetWindowTextW(window_, contents_.title.c_str());
  ShowContents();
  FocusArgument(0);
  UpdateWindow(window_);
}

XString DialogWindow::Outcome() const { return window_ ? contents_.page.Formula() : outcome_; }

void DialogWindow::ShowChild(Child& child, bool isShown) {
  child.isShown = isShown;
  ShowWindow(child.window, isShown ? SW_SHOWNA : SW_HIDE);
}

void DialogWindow::ShowContents() {
  const DialogPage& page = contents_.page;
  current_ = 0;
  for (std::size_t i = 0; i < kMostBoxes; ++i) ShowChild(boxes_[i], i < page.Boxes());
  FillBoxes();
  SCROLLINFO range{};
  range.cbSize = sizeof range;
  range.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
  range.nMax = static_cast<int>(page.Count()) - 1;
  range.nPage = static_cast<UINT>(page.Boxes());
  SetScrollInfo(bar_.window, SB_CTL, &range, TRUE);
  ShowChild(bar_, page.IsScrolled());
  Redraw();
}

void DialogWindow::FillBoxes() {
  const DialogPage& page = contents_.page;
  for (std::size_t i = 0; i < kMostBoxes; ++i)
    SetWindowTextW(boxes_[i].window, i < page.Boxes() ? page.TextOf(page.First() + i).c_str() : L"");
}

void DialogWindow::ScrollTo(std::size_t first) {
  const std::size_t before = contents_.page.First();
  contents_.page.ScrollTo(first);
  if (contents_.page.First() == before) return;
  SetScrollPos(bar_.window, SB_CTL, static_cast<int>(contents_.page.First()), TRUE);
  FillBoxes();
  if (const auto box = BoxOf(GetFocus())) current_ = contents_.page.First() + *box;
  Redraw();
}

void DialogWindow::Redraw() {
  elements_->Show(dialog_layout::Elements(contents_, current_));
  InvalidateRect(window_, nullptr, TRUE);
}

std::optional<std::size_t> DialogWindow::BoxOf(HWND child) const {
  for (std::size_t i = 0; i < contents_.page.Boxes(); ++i)
    if (boxes_[i].window == child) return i;
  return std::nullopt;
}

void DialogWindow::FocusArgument(std::size_t argument) {
  const DialogPage& page = contents_.page;
  if (argument >= page.Count()) {
    SetFocus(ok_.window);
    return;
  }
  if (argument < page.First()) ScrollTo(argument);
  if (argument >= page.First() + page.Boxes()) ScrollTo(argument + 1 - page.Boxes());
  const HWND box = boxes_[argument - contents_.page.First()].window;
  SetFocus(box);
  SendMessageW(box, EM_SETSEL, 0, -1);
}

void DialogWindow::MoveFocus(bool isForward) {
  // Round through the arguments, OK and Cancel; from anything else, from the argument that was typed in last.
  const std::size_t count = contents_.page.Count() + 2;
  const HWND focus = GetFocus();
  const std::size_t at = focus == ok_.window ? count - 2 : focus == cancel_.window ? count - 1 : current_;
  const std::size_t next = (at + (isForward ? 1 : count - 1)) % count;
  if (next == count - 1)
    SetFocus(cancel_.window);
  else
    FocusArgument(next);
}

bool DialogWindow::TakesKey(const MSG& message) {
  if (message.message != WM_KEYDOWN || !window_) return false;
  const HWND root = GetAncestor(message.hwnd, GA_ROOT);
  if (root != window_ && GetWindow(root, GW_OWNER) != window_) return false;
  switch (message.wParam) {
    case VK_TAB:
      MoveFocus(GetKeyState(VK_SHIFT) >= 0);
      return true;
    case VK_RETURN:
      End(GetFocus() == cancel_.window ? XString(XTEXT("cancelled")) : XTEXT("entered ") + contents_.page.Formula());
      return true;
    case VK_ESCAPE:
      End(XTEXT("cancelled"));
      return true;
    default:
      return false;
  }
}

void DialogWindow::End(const XString& outcome) {
  outcome_ = outcome;
  DestroyWindow(window_);
}

LRESULT CALLBACK DialogWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  const auto dialog = reinterpret_cast<DialogWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (!dialog) return DefWindowProcW(window, message, first, second);
  try {
    return dialog->Answer(message, first, second);
  } catch (...) {
    dialog->failure_ = std::current_exception();
    return 0;
  }
}

LRESULT CALLBACK DialogWindow::BoxProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message != WM_SETTEXT) return CallWindowProcW(systemEdit, window, message, first, second);
  SetPropW(window, kQuietProperty, window);
  const LRESULT answer = CallWindowProcW(systemEdit, window, message, first, second);
  RemovePropW(window, kQuietProperty);
  return answer;
}

LRESULT DialogWindow::Answer(UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_COMMAND:
      AnswerCommand(HIWORD(first), reinterpret_cast<HWND>(second));
      return 0;
    case WM_VSCROLL:
      AnswerScroll(LOWORD(first));
      return 0;
    case WM_PAINT:
      Paint();
      return 0;
    case WM_GETOBJECT:
      if (static_cast<LONG>(second) == OBJID_CLIENT) return LresultFromObject(IID_IAccessible, first, elements_);
      break;
    case WM_SETFOCUS:
      FocusArgument(current_);
      return 0;
    case WM_CLOSE:
      End(XTEXT("cancelled"));
      return 0;
    case WM_NCDESTROY:
      elements_->Detach();
      SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
      return DefWindowProcW(std::exchange(window_, nullptr), message, first, second);
    default:
      break;
  }
  return DefWindowProcW(window_, message, first, second);
}

void DialogWindow::AnswerCommand(UINT notification, HWND child) {
  if (child == ok_.window && notification == BN_CLICKED) return End(XTEXT("entered ") + contents_.page.Formula());
  if (child == cancel_.window && notification == BN_CLICKED) return End(XTEXT("cancelled"));
  const std::optional<std::size_t> box = BoxOf(child);
  if (!box) return;
  const std::size_t argument = contents_.page.First() + *box;
  if (notification == EN_CHANGE && !GetPropW(child, kQuietProperty)) {
    contents_.page.SetText(argument, TextOf(child));
    Redraw();
  }
  if (notification == EN_SETFOCUS && argument != current_) {
    current_ = argument;
    Redraw();
  }
}

void DialogWindow::AnswerScroll(UINT request) {
  const std::size_t first = contents_.page.First();
  SCROLLINFO range{};
  range.cbSize = sizeof range;
  range.fMask = SIF_TRACKPOS;
  switch (request) {
    case SB_LINEUP:
    case SB_PAGEUP:
      return ScrollTo(first > 0 ? first - 1 : 0);
    case SB_LINEDOWN:
    case SB_PAGEDOWN:
      return ScrollTo(first + 1);
    case SB_THUMBTRACK:
      if (GetScrollInfo(bar_.window, SB_CTL, &range)) ScrollTo(static_cast<std::size_t>(range.nTrackPos));
      return;
    default:
      return;
  }
}

void DialogWindow::Paint() {
  PAINTSTRUCT paint;
  const HDC device = BeginPaint(window_, &paint);
  Draw(device, dialog_layout::Elements(contents_, current_), fonts_);
  EndPaint(window_, &paint);
}

std::optional<std::string> DialogWindow::ChangedChild() const {
  for (const Child* child : {&boxes_[0], &boxes_[1], &boxes_[2], &boxes_[3], &boxes_[4], &bar_, &ok_, &cancel_}) {
    RECT place;
    if (!GetWindowRect(child->window, &place)) return child->name + " is gone";
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&place), 2);
    if (!EqualRect(&place, &child->place)) return child->name + " has another place";
    const LONG_PTR style = child->style | (child->isShown ? WS_VISIBLE : 0);
    if (GetWindowLongPtrW(child->window, GWL_STYLE) != style) return child->name + " has another style";
    if (GetWindowLongPtrW(child->window, GWLP_WNDPROC) != child->procedure)
      return child->name + " has another window procedure";
  }
  return std::nullopt;
}

bool DialogWindow::IsOwn(HWND child) const {
  for (const Child& box : boxes_)
    if (box.window == child) return true;
  return child == bar_.window || child == ok_.window || child == cancel_.window;
}

void DialogWindow::RethrowFailure() {
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

ULONG DialogWindow::StrangeReferences() const {
  elements_->AddRef();
  return elements_->Release() - 1;
}

}  // namespace qcalc
