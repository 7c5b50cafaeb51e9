#include "host/faults/handled_fault.h"

namespace qcalc {

// A signal's handler belongs to the process, not to a frame: there is nothing here that the add-in could disturb.
bool CanHandleFaults() { return false; }

bool HandleOwnFault() { return true; }

}  // namespace qcalc
