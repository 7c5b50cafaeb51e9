#include <windows.h>

#include "host/faults/handled_fault.h"

extern "C" {
int QcalcFaultAndRecover();
extern const char qcalcFaultyInstruction;
extern const char qcalcBehindFault;

EXCEPTION_DISPOSITION QcalcHandleFault(EXCEPTION_RECORD* record, void*, CONTEXT* context, void*);

/// The language handler of QcalcFaultAndRecover: goes on behind the instruction, telling that it was here.
EXCEPTION_DISPOSITION QcalcHandleFault(EXCEPTION_RECORD* record, void*, CONTEXT* context, void*) {
  if (record->ExceptionCode != EXCEPTION_ACCESS_VIOLATION || record->ExceptionAddress != &qcalcFaultyInstruction)
    return ExceptionContinueSearch;
  context->Rip = reinterpret_cast<DWORD64>(&qcalcBehindFault);
  context->Rax = 1;
  return ExceptionContinueExecution;
}
}

namespace qcalc {

bool CanHandleFaults() { return true; }

bool HandleOwnFault() { return QcalcFaultAndRecover() == 1; }

}  // namespace qcalc
