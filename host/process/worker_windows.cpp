// clang-format off
#include <windows.h>  // before all that need its types
// clang-format on
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "host/process/worker.h"

namespace qcalc {
namespace {

constexpr const wchar_t* kVariable = L"QCALC_JOURNAL";
constexpr DWORD kWaitMilliseconds = 100;

[[noreturn]] void Fail(const char* what) {
  throw std::runtime_error(std::string(what) + ": Windows error " + std::to_string(GetLastError()));
}

struct CodeName {
  DWORD code;
  const char* name;
};

constexpr CodeName kFaults[] = {
    {EXCEPTION_ACCESS_VIOLATION, "an access violation"},
    {EXCEPTION_IN_PAGE_ERROR, "a page that could not be read"},
    {EXCEPTION_DATATYPE_MISALIGNMENT, "a misaligned access"},
    {EXCEPTION_STACK_OVERFLOW, "a stack overflow"},
    {EXCEPTION_ILLEGAL_INSTRUCTION, "an illegal instruction"},
    {EXCEPTION_PRIV_INSTRUCTION, "a privileged instruction"},
    {EXCEPTION_INT_DIVIDE_BY_ZERO, "an integer divided by zero"},
    {EXCEPTION_BREAKPOINT, "a breakpoint"},
    {0xC0000409, "a damaged stack"},  // STATUS_STACK_BUFFER_OVERRUN, a fast failure too
    {0xC0000374, "a damaged heap"},
};

// The code with which the system ends a process whose last thread met an exception that nobody handled has its highest
// bits set, as no exit status has that a program gives on purpose.
constexpr DWORD kSystemsCode = 0xC0000000;

ProcessEnd EndOf(DWORD code) {
  ProcessEnd end;
  end.status = static_cast<std::int32_t>(code);
  end.wasInterrupted = code == STATUS_CONTROL_C_EXIT;
  end.wasStopped = (code & kSystemsCode) == kSystemsCode;
  if (!end.wasStopped) {
    end.reason = "it ended the process with status " + std::to_string(code);
    return end;
  }
  for (const CodeName& fault : kFaults)
    if (fault.code == code) end.reason = fault.name;
  if (end.reason.empty()) {
    char text[16];
    std::snprintf(text, sizeof text, "code %08lX", code);
    end.reason = text;
  }
  return end;
}

// Needs next to no stack: there is none left after an overflow.
LONG WINAPI EndByFault(EXCEPTION_POINTERS* fault) {
  TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
  return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

struct WorkerStarter::State {
  HANDLE mapping = nullptr;
  HANDLE job = nullptr;
  Journal* journal = nullptr;
};

WorkerStarter::WorkerStarter() : state_(std::make_unique<State>()) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  state_->mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, &inherited, PAGE_READWRITE, 0, sizeof(Journal), nullptr);
  if (!state_->mapping) Fail("no memory to share");
  void* memory = MapViewOfFile(state_->mapping, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Journal));
  if (!memory) Fail("no memory to share");
  state_->journal = new (memory) Journal;
  state_->job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(state_->job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
}

WorkerStarter::~WorkerStarter() {
  UnmapViewOfFile(state_->journal);
  CloseHandle(state_->mapping);
  CloseHandle(state_->job);
}

Journal& WorkerStarter::SharedJournal() { return *state_->journal; }

ProcessEnd WorkerStarter::Run(const std::function<void()>& wait) {
  SetEnvironmentVariableW(kVariable, std::to_wstring(reinterpret_cast<std::uintptr_t>(state_->mapping)).c_str());
  std::wstring program(32768, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  std::wstring commandLine = GetCommandLineW();
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION worker{};
  if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                      &startup, &worker))
    Fail("the program does not start");
  AssignProcessToJobObject(state_->job, worker.hProcess);
  ResumeThread(worker.hThread);
  CloseHandle(worker.hThread);
  while (WaitForSingleObject(worker.hProcess, kWaitMilliseconds) == WAIT_TIMEOUT) wait();
  DWORD code = 0;
  GetExitCodeProcess(worker.hProcess, &code);
  CloseHandle(worker.hProcess);
  return EndOf(code);
}

Journal* InheritedJournal() {
  const wchar_t* text = _wgetenv(kVariable);
  if (!text) return nullptr;
  const auto mapping = reinterpret_cast<HANDLE>(std::wcstoull(text, nullptr, 10));
  _wputenv_s(kVariable, L"");
  void* memory = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Journal));
  CloseHandle(mapping);
  return static_cast<Journal*>(memory);
}

void EndInterrupted(const ProcessEnd& end) { std::_Exit(end.status); }

void LetFaultsEndTheProcess() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  SetUnhandledExceptionFilter(EndByFault);
}

}  // namespace qcalc
