#include "host/dialogs/real_input_windows.h"

#include <stdexcept>
#include <vector>

namespace qcalc {
namespace {

constexpr DWORD kTurnMilliseconds = 120'000;
constexpr DWORD kQuietMilliseconds = 30;
constexpr DWORD kEndlessMilliseconds = 10'000;

constexpr BYTE kShiftNeeded = 1;

bool IsExtended(WORD key) { return (key >= VK_PRIOR && key <= VK_DOWN) || key == VK_DELETE; }

INPUT KeyInput(WORD key, bool isReleased) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
  input.ki.dwFlags = (isReleased ? KEYEVENTF_KEYUP : 0) | (IsExtended(key) ? KEYEVENTF_EXTENDEDKEY : 0);
  return input;
}

/// A character that no key has.
INPUT UnitInput(XCHAR unit, bool isReleased) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wScan = unit;
  input.ki.dwFlags = KEYEVENTF_UNICODE | (isReleased ? KEYEVENTF_KEYUP : 0);
  return input;
}

void Send(std::vector<INPUT> inputs) {
  const auto count = static_cast<UINT>(inputs.size());
  if (SendInput(count, inputs.data(), sizeof(INPUT)) != count) throw std::runtime_error("the system takes no input");
}

}  // namespace

InputTurn::InputTurn() : mutex_(CreateMutexW(nullptr, FALSE, L"Local\\QcalcInput")) {
  const DWORD turn = WaitForSingleObject(mutex_, kTurnMilliseconds);
  if (turn == WAIT_OBJECT_0 || turn == WAIT_ABANDONED) return;
  CloseHandle(mutex_);
  throw std::runtime_error("another program of the host's keeps the keyboard");
}

InputTurn::~InputTurn() {
  ReleaseMutex(mutex_);
  CloseHandle(mutex_);
}

void SendStroke(const KeyStroke& stroke) {
  KeyStroke held = stroke;
  if (stroke.key == 0) {
    const SHORT found = VkKeyScanW(stroke.unit);
    const BYTE shifts = HIBYTE(found);
    if (found == -1 || shifts > kShiftNeeded)
      return Send({UnitInput(stroke.unit, false), UnitInput(stroke.unit, true)});
    held.key = LOBYTE(found);
    held.withShift = shifts == kShiftNeeded;
  }
  std::vector<WORD> keys;
  if (held.withControl) keys.push_back(VK_CONTROL);
  if (held.withAlt) keys.push_back(VK_MENU);
  if (held.withShift) keys.push_back(VK_SHIFT);
  keys.push_back(held.key);
  std::vector<INPUT> inputs;
  for (const WORD key : keys) inputs.push_back(KeyInput(key, false));
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) inputs.push_back(KeyInput(*key, true));
  Send(std::move(inputs));
}

void SendClick(POINT place) {
  SetCursorPos(place.x, place.y);
  INPUT press{};
  press.type = INPUT_MOUSE;
  press.mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
  INPUT release = press;
  release.mi.dwFlags = MOUSEEVENTF_LEFTUP;
  Send({press, release});
}

void HandOutMessages(const std::function<bool(const MSG&)>& takes) {
  const DWORD start = GetTickCount();
  while (MsgWaitForMultipleObjects(0, nullptr, FALSE, kQuietMilliseconds, QS_ALLINPUT) == WAIT_OBJECT_0) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (GetTickCount() - start > kEndlessMilliseconds)
        throw std::runtime_error("windows send each other messages without end");
      if (takes(message)) continue;
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

}  // namespace qcalc
