#include <windows.h>

#include <csignal>
#include <cstdio>

#include "last_words.h"

namespace qcalc::fault {
namespace {

/// Prints the calls that led here, each as a module and an offset that addr2line understands.
void PrintCalls() {
  void* calls[24];
  const USHORT count = RtlCaptureStackBackTrace(0, static_cast<DWORD>(std::size(calls)), calls, nullptr);
  for (USHORT i = 0; i < count; ++i) {
    HMODULE module = nullptr;
    char path[MAX_PATH] = "?";
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<const char*>(calls[i]), &module);
    GetModuleFileNameA(module, path, sizeof path);
    std::fprintf(stderr, "  %s+0x%llX\n", path,
                 static_cast<unsigned long long>(static_cast<char*>(calls[i]) - reinterpret_cast<char*>(module)));
  }
}

LONG WINAPI OnException(EXCEPTION_POINTERS* exception) {
  PrintLastWords();
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  std::fprintf(stderr, "exception 0x%08lX at %p\n", record.ExceptionCode, record.ExceptionAddress);
  PrintCalls();
  return EXCEPTION_CONTINUE_SEARCH;
}

void OnAbort(int) {
  PrintLastWords();
  PrintCalls();
}

}  // namespace

void TellLastWords() {
  SetUnhandledExceptionFilter(&OnException);
  std::signal(SIGABRT, &OnAbort);
}

}  // namespace qcalc::fault
