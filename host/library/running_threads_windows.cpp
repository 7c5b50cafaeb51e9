#include <windows.h>
// Behind it: this one needs its types.
#include <tlhelp32.h>

#include "host/library/library.h"
#include "host/library/running_threads.h"

namespace qcalc {
namespace {

/// Where a thread began, null when the system does not tell. It does so when the thread has got to run: one that was
/// made just now is waited for.
void* StartOf(HANDLE thread) {
  constexpr ULONG kStartAddress = 9;
  using Query = LONG(WINAPI*)(HANDLE, ULONG, void*, ULONG, ULONG*);
  static const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationThread")));
  constexpr int kMostMilliseconds = 1'000;
  void* start = nullptr;
  for (int waited = 0; query && waited < kMostMilliseconds; ++waited) {
    const bool isRunning = WaitForSingleObject(thread, 0) == WAIT_TIMEOUT;
    if (query(thread, kStartAddress, &start, sizeof start, nullptr) != 0 || start || !isRunning) break;
    Sleep(1);
  }
  return start;
}

/// The system gives the id of a thread that has ended to another one; the time at which it began it does not.
std::uint64_t IdentityOf(HANDLE thread, DWORD id) {
  constexpr int kIdBits = 16;
  FILETIME began{}, ended{}, kernel{}, user{};
  GetThreadTimes(thread, &began, &ended, &kernel, &user);
  const std::uint64_t time = std::uint64_t{began.dwHighDateTime} << 32 | began.dwLowDateTime;
  return time << kIdBits ^ id;
}

bool StartedInRuntime(void* start) {
  HMODULE module = nullptr;
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<const wchar_t*>(start), &module) &&
         module == GetModuleHandleW(L"msvcrt.dll");
}

}  // namespace

std::set<std::uint64_t> RunningThreads(const Library* library) {
  std::set<std::uint64_t> threads;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  if (snapshot == INVALID_HANDLE_VALUE) return threads;
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID != GetCurrentProcessId()) continue;
    const HANDLE thread = OpenThread(THREAD_QUERY_INFORMATION | SYNCHRONIZE, FALSE, entry.th32ThreadID);
    if (!thread) continue;
    void* const start = library ? StartOf(thread) : nullptr;
    if (!library || library->Contains(start) || StartedInRuntime(start))
      threads.insert(IdentityOf(thread, entry.th32ThreadID));
    CloseHandle(thread);
  }
  CloseHandle(snapshot);
  return threads;
}

}  // namespace qcalc
