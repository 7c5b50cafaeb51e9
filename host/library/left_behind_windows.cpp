#include <windows.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "host/library/import_table_windows.h"
#include "host/library/left_behind.h"
#include "host/text/letter_case.h"

namespace qcalc {
namespace {

struct NotedClass {
  ATOM atom;
  XString name;
  HINSTANCE module;

  bool IsNamed(LPCWSTR asked) const {
    return IS_INTRESOURCE(asked) ? reinterpret_cast<ULONG_PTR>(asked) == atom : EqualsIgnoringCase(asked, name);
  }
};

using Timer = std::pair<HWND, UINT_PTR>;

struct Noted {
  std::mutex mutex;
  std::vector<HHOOK> hooks;
  std::vector<NotedClass> classes;
  std::vector<Timer> timers;
};

Noted& AllNoted() {
  static Noted noted;
  return noted;
}

HHOOK WINAPI NotedSetHook(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
  const HHOOK hook = SetWindowsHookExW(kind, procedure, module, thread);
  const std::lock_guard lock(AllNoted().mutex);
  if (hook) AllNoted().hooks.push_back(hook);
  return hook;
}

BOOL WINAPI NotedUnhook(HHOOK hook) {
  const BOOL isGone = UnhookWindowsHookEx(hook);
  const std::lock_guard lock(AllNoted().mutex);
  if (isGone) std::erase(AllNoted().hooks, hook);
  return isGone;
}

ATOM WINAPI NotedRegisterClass(const WNDCLASSEXW* description) {
  const ATOM atom = RegisterClassExW(description);
  const std::lock_guard lock(AllNoted().mutex);
  if (atom) AllNoted().classes.push_back({atom, description->lpszClassName, description->hInstance});
  return atom;
}

BOOL WINAPI NotedUnregisterClass(LPCWSTR name, HINSTANCE module) {
  const BOOL isGone = UnregisterClassW(name, module);
  const std::lock_guard lock(AllNoted().mutex);
  if (isGone) std::erase_if(AllNoted().classes, [&](const NotedClass& noted) { return noted.IsNamed(name); });
  return isGone;
}

UINT_PTR WINAPI NotedSetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
  const UINT_PTR made = SetTimer(window, id, milliseconds, procedure);
  const std::lock_guard lock(AllNoted().mutex);
  const Timer timer{window, window ? id : made};
  std::erase(AllNoted().timers, timer);
  if (made) AllNoted().timers.push_back(timer);
  return made;
}

BOOL WINAPI NotedKillTimer(HWND window, UINT_PTR id) {
  const BOOL isGone = KillTimer(window, id);
  const std::lock_guard lock(AllNoted().mutex);
  if (isGone) std::erase(AllNoted().timers, Timer{window, id});
  return isGone;
}

}  // namespace

void NoteSystemObjects(const Library& library) {
  const ImportPatch patches[] = {
      {"SetWindowsHookExW", reinterpret_cast<void*>(&NotedSetHook)},
      {"UnhookWindowsHookEx", reinterpret_cast<void*>(&NotedUnhook)},
      {"RegisterClassExW", reinterpret_cast<void*>(&NotedRegisterClass)},
      {"UnregisterClassW", reinterpret_cast<void*>(&NotedUnregisterClass)},
      {"SetTimer", reinterpret_cast<void*>(&NotedSetTimer)},
      {"KillTimer", reinterpret_cast<void*>(&NotedKillTimer)},
  };
  PatchImports(library, patches);
}

std::string TakeAwayLeftBehind() {
  Noted& noted = AllNoted();
  const std::lock_guard lock(noted.mutex);
  // A window takes its timers with it.
  std::erase_if(noted.timers, [](const Timer& timer) { return timer.first && !IsWindow(timer.first); });
  std::string left;
  const auto tell = [&](std::size_t count, const char* one, const char* several) {
    if (count > 0) left += (left.empty() ? "" : ", ") + std::to_string(count) + " " + (count == 1 ? one : several);
  };
  tell(noted.hooks.size(), "hook", "hooks");
  tell(noted.classes.size(), "window class", "window classes");
  tell(noted.timers.size(), "timer", "timers");
  for (const HHOOK hook : std::exchange(noted.hooks, {})) UnhookWindowsHookEx(hook);
  for (const Timer& timer : std::exchange(noted.timers, {})) KillTimer(timer.first, timer.second);
  for (const NotedClass& one : std::exchange(noted.classes, {})) UnregisterClassW(MAKEINTATOM(one.atom), one.module);
  return left;
}

}  // namespace qcalc
