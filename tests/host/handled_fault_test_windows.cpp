// The host's handler of its own faults, alone and with another one before it.
#include <gtest/gtest.h>
#include <windows.h>

#include "host/faults/handled_fault.h"

namespace qcalc {
namespace {

/// Passes over the faulting instruction, as a handler that takes what is not its own would.
LONG CALLBACK TakeEveryFault(EXCEPTION_POINTERS* fault) {
  constexpr DWORD64 kInstructionBytes = 2;
  if (fault->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION) return EXCEPTION_CONTINUE_SEARCH;
  fault->ContextRecord->Rip += kInstructionBytes;
  return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(HandledFault, ShowsWhetherAnotherHandlerTookIt) {
  ASSERT_TRUE(CanHandleFaults());
  EXPECT_TRUE(HandleOwnFault());
  void* const handler = AddVectoredExceptionHandler(1, &TakeEveryFault);
  EXPECT_FALSE(HandleOwnFault());
  RemoveVectoredExceptionHandler(handler);
  EXPECT_TRUE(HandleOwnFault());
}

}  // namespace
}  // namespace qcalc
