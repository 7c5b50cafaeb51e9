#include <windows.h>

#include "host/faults/handled_fault.h"

extern "C" {
int QcalcFaultAndRecover();
extern const char qcalcFaultyInstruction;
extern const char qcalcBehindFault;

EXCEPTION_DISPOSITION QcalcHandleFault(EXCEPTION_RECORD* record, void* frame, CONTEXT* context, void*);

/// The language handler of QcalcFaultAndRecover: goes on behind what faulted, and counts in the frame that it was here.
EXCEPTION_DISPOSITION QcalcHandleFault(EXCEPTION_RECORD* record, void* frame, CONTEXT* context, void*) {
  constexpr std::size_t kCountOffset = 32;
  const bool isRead =
      record->ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record->ExceptionAddress == &qcalcFaultyInstruction;
  if (!isRead && record->ExceptionCode != EXCEPTION_STACK_OVERFLOW) return ExceptionContinueSearch;
  if (isRead) context->Rip = reinterpret_cast<DWORD64>(&qcalcBehindFault);
  ++*reinterpret_cast<int*>(static_cast<char*>(frame) + kCountOffset);
  return ExceptionContinueExecution;
}
}

namespace qcalc {

bool CanHandleFaults() { return true; }

bool HandleOwnFault() { return QcalcFaultAndRecover() == 2; }

}  // namespace qcalc
