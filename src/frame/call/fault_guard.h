// Faults of the processor inside a worksheet function: what brings them home.
//
// On Windows every call runs inside a guard, GuardedCall (fault_guard_windows.S). Its frame saves all registers that a
// function must preserve and names a language handler. From there a fault takes one of two ways:
//
// 1. As an exception. The handler, met in the first pass of the search for one, has the thread go on in a thunk that
//    throws CXlStructuredException as if from the faulting instruction. Destructors run, the wrapper catches.
// 2. By escape. Where C++ cannot throw (inside memcpy, in a destructor, in a noexcept function) the runtime calls
//    std::terminate; our terminate handler resumes the guard as if its callee had returned. What the frames in between
//    owned is lost, and so are the two blocks of the exception object; store locks held are released. A stack overflow
//    always escapes, since there is no room left for a throw.
//
// A fault is ours when it lies in this library, or in a routine called straight from it that is not the system's core
// (which may be holding the heap's lock). All others, those of the host during a callback above all, are left to whom
// they belong.
//
// Natively faults belong to the sanitizers, and the guard is a plain call.
#pragma once

#include <cstdint>

namespace quillmere {

class CStoreMutex;
struct ThreadRecord;

/// Store locks that one call may hold at a time.
constexpr int kMaxHeldLocks = 2;

/// The words that the C++ runtime keeps for each thread: exceptions being handled, and the number of those on their
/// way.
struct ExceptionGlobals {
  void* caught = nullptr;
  unsigned int uncaught = 0;
};

/// One protected call on its thread. Lives in the wrapper; the innermost hangs on the thread's record.
struct FaultGuard {
  void* stackPointer = nullptr;                ///< of the guard's frame, while its callee runs
  ExceptionGlobals exceptionGlobals;           ///< as on entry
  std::uint32_t faultCode = 0;                 ///< the system's code of the last fault of ours; 0: none yet
  int callbackDepth = 0;                       ///< above 0 while the host runs on the callee's behalf
  CStoreMutex* heldLocks[kMaxHeldLocks] = {};  ///< taken by the callee and not yet given back
  FaultGuard* outer = nullptr;                 ///< of the call that led here through the host
};

enum class GuardResult { kReturned, kEscaped };

/// Calls `body(context)`, which lets no exception out, inside a guard that hangs on `record` meanwhile. After an escape
/// whatever `body` was working on is in an unknown state and must be left as it is; `guard.faultCode` tells why, 0 when
/// std::terminate was called without a fault.
GuardResult CallProtected(void (*body)(void*), void* context, ThreadRecord& record, FaultGuard& guard) noexcept;

}  // namespace quillmere
