// The end of a process that an exception has reached where nobody handles it.
#pragma once

namespace qcalc {

/// Notes in the journal what the exception in flight says, if there is one, and ends the process.
[[noreturn]] void EndWithLastWords();

}  // namespace qcalc
