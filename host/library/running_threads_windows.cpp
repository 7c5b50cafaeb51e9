#include <windows.h>
// Behind it: this one needs its types.
#include <tlhelp32.h>

#include "host/library/library.h"
#include "host/library/running_threads.h"

namespace qcalc {
namespace {

/// Where a thread began, null when the system does not tell.
void* StartOf(DWORD thread) {
  constexpr ULONG kStartAddress = 9;
  using Query = LONG(WINAPI*)(HANDLE, ULONG, void*, ULONG, ULONG*);
  static const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationThread")));
  void* start = nullptr;
  const HANDLE handle = OpenThread(THREAD_QUERY_INFORMATION, FALSE, thread);
  if (!handle) return nullptr;
  if (query) query(handle, kStartAddress, &start, sizeof start, nullptr);
  CloseHandle(handle);
  return start;
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
    void* const start = library ? StartOf(entry.th32ThreadID) : nullptr;
    if (!library || library->Contains(start) || StartedInRuntime(start)) threads.insert(entry.th32ThreadID);
  }
  CloseHandle(snapshot);
  return threads;
}

}  // namespace qcalc
