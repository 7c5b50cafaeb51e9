#include "host/objects/excel_frame_windows.h"

// They need the types of windows.h.
#include <oleacc.h>

#include <algorithm>
#include <stdexcept>

namespace qcalc {
namespace {

constexpr const wchar_t* kMainClass = L"XLMAIN";
constexpr const wchar_t* kDesktopClass = L"XLDESK";
constexpr const wchar_t* kBookClass = L"EXCEL7";

/// Another session of this process may have registered it already.
void Register(const wchar_t* name, WNDPROC procedure) {
  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  description.lpfnWndProc = procedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = name;
  if (!RegisterClassExW(&description) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
    throw std::runtime_error("a window class could not be registered");
}

HWND Create(const wchar_t* windowClass, const wchar_t* title, DWORD style, HWND parent) {
  constexpr int kWidth = 800, kHeight = 600;
  const HWND window = CreateWindowExW(0, windowClass, title, style, 0, 0, kWidth, kHeight, parent, nullptr,
                                      GetModuleHandleW(nullptr), nullptr);
  if (!window) throw std::runtime_error("a window could not be created");
  return window;
}

}  // namespace

LRESULT CALLBACK ExcelFrame::BookProcedure(HWND window, UINT message, WPARAM wide, LPARAM narrow) {
  auto* const object = reinterpret_cast<WindowObject*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (message != WM_GETOBJECT || static_cast<LONG>(narrow) != OBJID_NATIVEOM || !object)
    return DefWindowProcW(window, message, wide, narrow);
  if (const auto refused = object->RefusesAccess()) return *refused;
  return LresultFromObject(IID_IDispatch, wide, object);
}

ExcelFrame::ExcelFrame(std::shared_ptr<ObjectOffice> office)
    : office_(std::move(office)), application_(new ApplicationObject(office_)) {
  Register(kMainClass, DefWindowProcW);
  Register(kDesktopClass, DefWindowProcW);
  Register(kBookClass, BookProcedure);
  main_ = Create(kMainClass, L"Microsoft Excel", WS_OVERLAPPEDWINDOW, nullptr);
  desktop_ = Create(kDesktopClass, L"", WS_CHILD, main_);
  office_->mainWindow = main_;
  office_->application = application_.Get();
}

ExcelFrame::~ExcelFrame() {
  Show({});
  office_->application = nullptr;
  office_->mainWindow = nullptr;
  DestroyWindow(main_);
  for (const wchar_t* name : {kMainClass, kDesktopClass, kBookClass}) UnregisterClassW(name, GetModuleHandleW(nullptr));
}

void ExcelFrame::Show(const std::vector<const Book*>& books) {
  std::erase_if(books_, [&](const BookWindow& window) {
    const bool isOpen =
        std::any_of(books.begin(), books.end(), [&](auto* book) { return book->Name() == window.book; });
    if (!isOpen) DestroyWindow(window.handle);
    return !isOpen;
  });
  for (const Book* book : books) {
    if (std::any_of(books_.begin(), books_.end(), [&](auto& window) { return window.book == book->Name(); })) continue;
    Kept<WindowObject> object(new WindowObject(office_));
    const HWND handle = Create(kBookClass, book->Name().c_str(), WS_CHILD | WS_CAPTION, desktop_);
    SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(object.Get()));
    books_.push_back({book->Name(), handle, std::move(object)});
  }
}

}  // namespace qcalc
