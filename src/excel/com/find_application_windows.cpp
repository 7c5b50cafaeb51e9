#include "excel/com/find_application_windows.h"

#include <oleacc.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <vector>

#include "excel/class_name_windows.h"
#include "excel/com/late_bound_windows.h"
#include "excel/system_library_windows.h"
#include "frame/callbacks/excel_window.h"

namespace quillmere {
namespace {

constexpr const XCHAR* kMainWindowClass = XTEXT("XLMAIN");
constexpr const XCHAR* kWorkbookWindowClass = XTEXT("EXCEL7");
constexpr const XCHAR* kRunningObjects[] = {XTEXT("Excel.Application"), XTEXT("Excel.Application.5")};

/// Handles have 32 significant bits, and Excel hands them out as such.
HWND WindowOf(std::int32_t handle) noexcept { return reinterpret_cast<HWND>(static_cast<INT_PTR>(handle)); }

bool IsOfThisProcess(HWND window) noexcept {
  DWORD process = 0;
  return GetWindowThreadProcessId(window, &process) != 0 && process == GetCurrentProcessId();
}

/// A search for the windows of this process that have a class.
struct WindowSearch {
  XStringView className;
  std::vector<HWND> found = {};
  bool outOfMemory = false;

  static BOOL CALLBACK Note(HWND window, LPARAM context) noexcept {
    WindowSearch& search = *reinterpret_cast<WindowSearch*>(context);
    if (!IsOfThisProcess(window) || ClassName(window).View() != search.className) return TRUE;
    try {
      search.found.push_back(window);
      return TRUE;
    } catch (const std::bad_alloc&) {
      search.outOfMemory = true;
      return FALSE;
    }
  }
};

/// The windows of a class that `enumerate` goes through.
template <class Enumerate>
std::vector<HWND> WindowsOf(XStringView className, const Enumerate& enumerate) {
  WindowSearch search{className};
  enumerate(&WindowSearch::Note, reinterpret_cast<LPARAM>(&search));
  if (search.outOfMemory) throw std::bad_alloc();
  return std::move(search.found);
}

/// The main windows: that which Excel names first, then each other (newer versions have one a workbook).
std::vector<HWND> MainWindows() {
  std::vector<HWND> windows = WindowsOf(kMainWindowClass, &EnumWindows);
  const HWND named = reinterpret_cast<HWND>(ExcelWindow());
  std::ranges::partition(windows, [named](HWND window) { return window == named; });
  return windows;
}

std::vector<HWND> WorkbookWindows() {
  std::vector<HWND> windows;
  for (const HWND main : MainWindows()) {
    const auto enumerate = [main](WNDENUMPROC note, LPARAM context) { EnumChildWindows(main, note, context); };
    std::ranges::copy(WindowsOf(kWorkbookWindowClass, enumerate), std::back_inserter(windows));
  }
  return windows;
}

using ObjectFromWindow = decltype(::AccessibleObjectFromWindow);

/// A window of a workbook gives its object of Excel's model where others give an accessible one.
ComOutcome ApplicationOf(HWND window, ObjectFromWindow* objectFromWindow,
                         ComReference<IDispatch>& application) noexcept {
  ComReference<IDispatch> object;
  const HRESULT asked =
      objectFromWindow(window, static_cast<DWORD>(OBJID_NATIVEOM), IID_IDispatch, object.Receive<void>());
  if (FAILED(asked) || !object) return {FAILED(asked) ? asked : E_NOINTERFACE, XTEXT("AccessibleObjectFromWindow")};
  return GetObjectProperty(*object, XTEXT("Application"), application, WhenBusy::kWait);
}

/// Of several windows that do not answer the last one's failure is told.
ComOutcome ApplicationOfWindows(ComReference<IDispatch>& application) {
  const SystemLibrary library(XTEXT("oleacc.dll"));
  auto* const objectFromWindow = library.Find<ObjectFromWindow>("AccessibleObjectFromWindow");
  if (!objectFromWindow) return {HRESULT_FROM_WIN32(GetLastError()), XTEXT("AccessibleObjectFromWindow")};
  ComOutcome outcome = {HRESULT_FROM_WIN32(ERROR_NOT_FOUND), XTEXT("EnumChildWindows")};
  for (const HWND window : WorkbookWindows()) {
    outcome = ApplicationOf(window, objectFromWindow, application);
    if (outcome) break;
  }
  return outcome;
}

bool BelongsToThisProcess(IDispatch& application) noexcept {
  ComVariant window;
  if (!GetProperty(application, XTEXT("Hwnd"), window, WhenBusy::kWait)) return false;
  const std::optional<std::int32_t> handle = window.Integer();
  return handle && IsOfThisProcess(WindowOf(*handle));
}

/// None where no running object is this process's.
ComReference<IDispatch> RunningApplication() noexcept {
  for (const XCHAR* const name : kRunningObjects) {
    CLSID id;
    ComReference<IUnknown> running;
    ComReference<IDispatch> application;
    if (SUCCEEDED(CLSIDFromProgID(name, &id)) && SUCCEEDED(GetActiveObject(id, nullptr, running.Receive())) &&
        SUCCEEDED(running->QueryInterface(IID_IDispatch, application.Receive<void>())) &&
        BelongsToThisProcess(*application))
      return application;
  }
  return {};
}

}  // namespace

bool HasWorkbookWindow() { return !WorkbookWindows().empty(); }

ComReference<IDispatch> FindApplication() {
  ComReference<IDispatch> application;
  const ComOutcome outcome = ApplicationOfWindows(application);
  if (outcome) return application;
  application = RunningApplication();
  if (!application) outcome.ThrowIfFailed();
  return application;
}

}  // namespace quillmere
