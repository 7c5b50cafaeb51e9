// A fault of the processor in the host's own code, which the host handles itself, as Excel handles some of its own.
#pragma once

namespace qcalc {

/// Whether this build can: natively it cannot.
bool CanHandleFaults();

/// Reads where no memory is, raises a stack overflow, and recovers from both by the handler of its own frame. False
/// when another handler took one of them and came back here.
bool HandleOwnFault();

}  // namespace qcalc
