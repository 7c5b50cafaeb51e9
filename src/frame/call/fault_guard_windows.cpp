// The Windows half of the fault guard: which faults are ours, where an exception for one is thrown from, and the
// escape. fault_guard.h tells the story, fault_guard_windows.S holds the frames. Only documented structures are used.
#include <malloc.h>
#include <windows.h>

#include <cstdlib>
#include <exception>

#include "frame/call/fault_guard.h"
#include "frame/call/module_windows.h"
#include "frame/call/store_lock.h"
#include "frame/call/thread_record.h"
#include "frame/entry/callback_scope.h"
#include "frame/errors/exceptions.h"

extern "C" {
/// Calls body(context) in the default float environment; `stackPointer` receives that of its frame first. Returns 0, or
/// the code given to EscapeToGuard.
std::uint32_t GuardedCall(void (*body)(void*), void* context, void** stackPointer);
[[noreturn]] void EscapeToGuard(void* stackPointer, std::uint32_t code);
/// Where a thread goes on after a fault of ours; its arguments are in registers of their own.
void ThrowAtFault();
EXCEPTION_DISPOSITION HandleFaultInGuard(EXCEPTION_RECORD* exception, void* frame, CONTEXT* context, void* dispatcher);
[[noreturn]] void ThrowStructuredException(std::uint32_t code);

/// The first bytes of this library's image; the linker names them.
extern IMAGE_DOS_HEADER __ImageBase;

/// Allocates the memory of an exception object; ends in std::terminate when there is none.
void* __cxa_allocate_exception(std::size_t size) noexcept;

/// The C++ runtime's words for each thread, which it asks for by these names.
quillmere::ExceptionGlobals* __cxa_get_globals() noexcept;
quillmere::ExceptionGlobals* __cxa_get_globals_fast() noexcept;
}

namespace quillmere {
namespace {

constexpr std::uint32_t kEscapeCode = 1;

void* overflowHandler = nullptr;
std::terminate_handler previousTerminate = nullptr;

/// The guard that this thread's code is inside of right now; null outside all guards, and while the host runs.
FaultGuard* ActiveGuard() noexcept {
  ThreadRecord* const record = ExistingThreadRecord();
  FaultGuard* const guard = record ? record->guard : nullptr;
  return guard && guard->stackPointer && guard->callbackDepth == 0 ? guard : nullptr;
}

bool IsProcessorFault(DWORD code) noexcept {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_FLT_DENORMAL_OPERAND:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_STACK_CHECK:
    case EXCEPTION_FLT_UNDERFLOW:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_PRIV_INSTRUCTION:
      return true;
    default:
      return false;
  }
}

// ---- Whose fault it is

bool IsInThisLibrary(DWORD64 address) noexcept {
  const auto base = reinterpret_cast<DWORD64>(&__ImageBase);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + __ImageBase.e_lfanew);
  return address >= base && address - base < headers->OptionalHeader.SizeOfImage;
}

/// The base of the image that holds a function's code; 0 where no function is known.
DWORD64 ImageOf(DWORD64 address) noexcept {
  DWORD64 base = 0;
  return RtlLookupFunctionEntry(address, &base, nullptr) ? base : 0;
}

bool IsInSystemCore(DWORD64 address) noexcept {
  return ImageOf(address) == reinterpret_cast<DWORD64>(GetModuleHandleW(L"ntdll.dll"));
}

/// To the caller of a function that has not touched the stack yet: a leaf, or no function at all.
void PopReturnAddress(CONTEXT& context) noexcept {
  context.Rip = *reinterpret_cast<const DWORD64*>(context.Rsp);
  context.Rsp += sizeof(DWORD64);
}

CONTEXT CallerOf(const CONTEXT& context) noexcept {
  CONTEXT caller = context;
  DWORD64 base = 0;
  RUNTIME_FUNCTION* const entry = RtlLookupFunctionEntry(caller.Rip, &base, nullptr);
  if (!entry) {
    PopReturnAddress(caller);
    return caller;
  }
  void* handlerData = nullptr;
  DWORD64 frame = 0;
  RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, caller.Rip, entry, &caller, &handlerData, &frame, nullptr);
  return caller;
}

bool IsOurs(const CONTEXT& context) noexcept {
  if (IsInThisLibrary(context.Rip)) return true;
  if (IsInSystemCore(context.Rip)) return false;
  // A routine of the C library may do its work in another one of its own.
  constexpr int kDeepest = 4;
  CONTEXT caller = CallerOf(context);
  for (int depth = 1; depth < kDeepest && ImageOf(caller.Rip) == ImageOf(context.Rip); ++depth)
    caller = CallerOf(caller);
  return IsInThisLibrary(caller.Rip);
}

// ---- Where the exception is thrown from

/// Whether the bytes read as the end of a function: add or lea to rsp, pop, ret, jmp. The unwinder would take them at
/// their word and look for the caller where it is not.
bool ReadsAsEpilogue(const std::uint8_t* code) noexcept {
  const bool hasWidePrefix = (code[0] & 0xF8) == 0x48;
  if (hasWidePrefix && (code[1] == 0x81 || code[1] == 0x83) && code[2] == 0xC4) return true;
  if (hasWidePrefix && code[1] == 0x8D && (code[2] & 0x38) == 0x20) return true;
  if ((code[0] & 0xF0) == 0x40) ++code;
  switch (code[0]) {
    case 0xC2:
    case 0xC3:
    case 0xE9:
    case 0xEB:
      return true;
    case 0xF3:
      return code[1] == 0xC3;
    case 0xFF:
      return (code[1] & 0x38) == 0x20;
    default:
      return (code[0] & 0xF8) == 0x58;
  }
}

/// Moves from the faulting instruction to the address that the unwinder must be given for it.
///
/// The C++ runtime looks up the byte before an address, since it expects return addresses: inside a function that is
/// the faulting instruction's own address plus one, or a little more where the bytes there mislead the unwinder. In a
/// prologue the address itself tells which registers are saved already. Where no function is known the code is a leaf
/// or was called through a bad pointer, and its caller's return address is just what is wanted.
void MoveToUnwindAddress(CONTEXT& context) noexcept {
  DWORD64 base = 0;
  const RUNTIME_FUNCTION* const entry = RtlLookupFunctionEntry(context.Rip, &base, nullptr);
  if (!entry) return PopReturnAddress(context);
  const std::uint8_t prologueSize = reinterpret_cast<const std::uint8_t*>(base + entry->UnwindData)[1];
  if (context.Rip < base + entry->BeginAddress + prologueSize) return;
  constexpr int kFurthest = 3;
  int step = 1;
  while (step < kFurthest && ReadsAsEpilogue(reinterpret_cast<const std::uint8_t*>(context.Rip + step))) ++step;
  context.Rip += static_cast<DWORD64>(step);
}

// ---- The escape

void EscapeOnTerminate() {
  if (FaultGuard* const guard = ActiveGuard()) EscapeToGuard(guard->stackPointer, kEscapeCode);
  std::abort();
}

/// Sees every exception of the process first, and takes stack overflows in our code alone.
LONG CALLBACK EscapeOnStackOverflow(EXCEPTION_POINTERS* pointers) {
  CONTEXT& context = *pointers->ContextRecord;
  if (pointers->ExceptionRecord->ExceptionCode != EXCEPTION_STACK_OVERFLOW) return EXCEPTION_CONTINUE_SEARCH;
  FaultGuard* const guard = ActiveGuard();
  if (!guard || IsInSystemCore(context.Rip)) return EXCEPTION_CONTINUE_SEARCH;
  guard->faultCode = EXCEPTION_STACK_OVERFLOW;
  context.Rip = reinterpret_cast<DWORD64>(&EscapeToGuard);
  context.Rcx = reinterpret_cast<DWORD64>(guard->stackPointer);
  context.Rdx = kEscapeCode;
  return EXCEPTION_CONTINUE_EXECUTION;
}

/// The C++ runtime's reserve for exceptions takes its lock for the first time when memory has run out, and the lock
/// needs memory then. Asking for more than there can ever be takes that lock now, and ends in std::terminate.
void PrimeExceptionReserve() noexcept {
  ThreadRecord* const record = CurrentThreadRecord();
  if (!record) return;
  FaultGuard guard;
  CallProtected([](void*) { static_cast<void>(__cxa_allocate_exception(std::size_t{1} << 60)); }, nullptr, *record,
                guard);
}

}  // namespace

GuardResult CallProtected(void (*body)(void*), void* context, ThreadRecord& record, FaultGuard& guard) noexcept {
  guard.outer = record.guard;
  guard.exceptionGlobals = record.exceptionGlobals;
  record.guard = &guard;
  const std::uint32_t code = GuardedCall(body, context, &guard.stackPointer);
  record.guard = guard.outer;
  if (code == 0) return GuardResult::kReturned;
  record.exceptionGlobals = guard.exceptionGlobals;
  if (guard.faultCode == EXCEPTION_STACK_OVERFLOW) _resetstkoflw();
  ReleaseHeldLocks(guard);
  return GuardResult::kEscaped;
}

CallbackScope::CallbackScope() noexcept : guard_(ActiveGuard()) {
  if (guard_) ++guard_->callbackDepth;
}

CallbackScope::~CallbackScope() {
  if (guard_) --guard_->callbackDepth;
}

void InstallFaultHandling() noexcept {
  overflowHandler = AddVectoredExceptionHandler(1, &EscapeOnStackOverflow);
  previousTerminate = std::set_terminate(&EscapeOnTerminate);
  PrimeExceptionReserve();
}

void RemoveFaultHandling() noexcept {
  if (overflowHandler) RemoveVectoredExceptionHandler(overflowHandler);
  overflowHandler = nullptr;
  std::set_terminate(previousTerminate);
}

}  // namespace quillmere

void ThrowStructuredException(std::uint32_t code) { throw quillmere::CXlStructuredException(code); }

EXCEPTION_DISPOSITION HandleFaultInGuard(EXCEPTION_RECORD* exception, void*, CONTEXT* context, void*) {
  using namespace quillmere;
  constexpr DWORD kSecondPass = EXCEPTION_UNWINDING | EXCEPTION_EXIT_UNWIND;
  if ((exception->ExceptionFlags & kSecondPass) || !IsProcessorFault(exception->ExceptionCode))
    return ExceptionContinueSearch;
  FaultGuard* const guard = ActiveGuard();
  if (!guard || !IsOurs(*context)) return ExceptionContinueSearch;
  guard->faultCode = exception->ExceptionCode;
  MoveToUnwindAddress(*context);
  context->Rcx = context->Rip;
  context->Rdx = context->Rsp;
  context->R8 = exception->ExceptionCode;
  context->Rip = reinterpret_cast<DWORD64>(&ThrowAtFault);
  return ExceptionContinueExecution;
}

// The words are in the record that the thread has anyway. The runtime's own stand in emulated thread storage, which is
// allocated at the first throw and stays behind when the library is unloaded under live threads.
quillmere::ExceptionGlobals* __cxa_get_globals() noexcept {
  static quillmere::ExceptionGlobals ofThreadsWithoutRecord;
  quillmere::ThreadRecord* const record = quillmere::CurrentThreadRecord();
  return record ? &record->exceptionGlobals : &ofThreadsWithoutRecord;
}

quillmere::ExceptionGlobals* __cxa_get_globals_fast() noexcept { return __cxa_get_globals(); }
