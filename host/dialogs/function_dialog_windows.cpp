#include <algorithm>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "host/dialogs/dialog_window_windows.h"
#include "host/dialogs/function_dialog.h"
#include "host/dialogs/real_input_windows.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

XString ClassOf(HWND window) {
  wchar_t name[256] = L"";
  GetClassNameW(window, name, static_cast<int>(std::size(name)));
  return name;
}

BOOL CALLBACK Collect(HWND window, LPARAM windows) {
  reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
  return TRUE;
}

RECT PlaceOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

/// The visible windows of that class on this thread, as they come from above and from the left.
std::vector<HWND> VisibleWindows(XStringView windowClass) {
  std::vector<HWND> all;
  EnumThreadWindows(GetCurrentThreadId(), Collect, reinterpret_cast<LPARAM>(&all));
  for (std::size_t i = 0, top = all.size(); i < top; ++i)
    EnumChildWindows(all[i], Collect, reinterpret_cast<LPARAM>(&all));
  std::erase_if(
      all, [&](HWND window) { return !IsWindowVisible(window) || !EqualsIgnoringCase(ClassOf(window), windowClass); });
  std::sort(all.begin(), all.end(), [](HWND left, HWND right) {
    const RECT one = PlaceOf(left), other = PlaceOf(right);
    return std::tie(one.top, one.left) < std::tie(other.top, other.left);
  });
  return all;
}

POINT SpotOf(const RECT& place, WindowSpot spot) {
  constexpr int kFromEdge = 6;
  const POINT center{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
  switch (spot) {
    case WindowSpot::kCenter:
      return center;
    case WindowSpot::kLeft:
      return {place.left + kFromEdge, center.y};
    case WindowSpot::kRight:
      return {place.right - kFromEdge, center.y};
    case WindowSpot::kTop:
      return {center.x, place.top + kFromEdge};
    case WindowSpot::kBottom:
      return {center.x, place.bottom - kFromEdge};
  }
  return center;
}

class FunctionDialog final : public IFunctionDialog {
 public:
  FunctionDialog(DialogContents contents, HWND owner, Complaints& complaints)
      : complaints_(complaints), window_(std::move(contents), owner) {
    window_.Open();
    Settle();
  }

  ~FunctionDialog() override {
    try {
      if (window_.Handle()) DestroyWindow(window_.Handle());
      Settle();
    } catch (const std::exception& error) {
      complaints_.Add(error.what());
    }
    if (const ULONG left = window_.StrangeReferences(); left > 0)
      complaints_.Add("the accessible object of a closed dialog is still held " + std::to_string(left) + " times");
  }

  void Change(DialogContents contents) override {
    NeedOpen();
    window_.Change(std::move(contents));
    Settle();
  }

  void Press(std::span<const KeyStroke> strokes) override {
    for (const KeyStroke& stroke : strokes) {
      ComeForward();
      SendStroke(stroke);
      Settle();
    }
  }

  bool Click(XStringView windowClass, std::size_t nth, WindowSpot spot) override {
    ComeForward();
    const std::vector<HWND> windows = VisibleWindows(windowClass);
    if (nth >= windows.size()) return false;
    SendClick(SpotOf(PlaceOf(windows[nth]), spot));
    Settle();
    return true;
  }

  bool IsOpen() const override { return window_.Handle() != nullptr; }
  XString Outcome() const override { return window_.Outcome(); }
  std::size_t CountWindows(XStringView windowClass) const override { return VisibleWindows(windowClass).size(); }
  std::string FirstChange() const override;

 private:
  void NeedOpen() const {
    if (!window_.Handle()) throw std::runtime_error("the dialog is closed");
  }

  /// Another program's window may have come to the front.
  void ComeForward() {
    NeedOpen();
    if (GetWindowThreadProcessId(GetForegroundWindow(), nullptr) == GetCurrentThreadId()) return;
    SetForegroundWindow(window_.Handle());
    Settle();
  }

  void Settle() {
    HandOutMessages([this](const MSG& message) { return window_.TakesKey(message); });
    window_.RethrowFailure();
  }

  Complaints& complaints_;
  InputTurn turn_;
  DialogWindow window_;
};

std::string FunctionDialog::FirstChange() const {
  NeedOpen();
  const HWND dialog = window_.Handle();
  std::vector<HWND> windows;
  EnumThreadWindows(GetCurrentThreadId(), Collect, reinterpret_cast<LPARAM>(&windows));
  std::erase_if(windows,
                [&](HWND window) { return GetWindow(window, GW_OWNER) != dialog || !IsWindowVisible(window); });
  EnumChildWindows(dialog, Collect, reinterpret_cast<LPARAM>(&windows));
  for (const HWND window : windows)
    if (!window_.IsOwn(window)) return "a window of class " + ToUtf8(ClassOf(window)) + " has been added";
  return window_.ChangedChild().value_or("");
}

}  // namespace

bool CanOpenDialogs() { return true; }

std::unique_ptr<IFunctionDialog> OpenFunctionDialog(DialogContents contents, std::int32_t owner,
                                                    Complaints& complaints) {
  return std::make_unique<FunctionDialog>(std::move(contents),
                                          reinterpret_cast<HWND>(static_cast<std::intptr_t>(owner)), complaints);
}

}  // namespace qcalc
