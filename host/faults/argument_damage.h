// How a value that is to be handed over is spoilt.
#pragma once

#include <vector>

#include "host/api/marshal.h"
#include "host/faults/argument_fault.h"
#include "host/faults/spoilt_memory.h"

namespace qcalc {

/// A spoilt copy of the value, in memory that is added to `memory`; the value and what hangs on it stay as they are.
/// Where the value cannot be spoilt so: null, and `reason` says why. kNull is no damage to a value: not to be asked
/// for.
template <typename Width>
typename Width::Oper* SpoiltCopy(const typename Width::Oper& oper, const ArgumentFault& fault,
                                 std::vector<SpoiltMemory>& memory, std::string& reason);

/// Whether all that hangs on a value can be read: what the host has spoilt may come back to it as an argument of a
/// callback.
template <typename Width>
bool IsReadable(const typename Width::Oper& oper);

extern template bool IsReadable<Wide>(const XLOPER12&);
extern template bool IsReadable<Narrow>(const XLOPER&);
extern template XLOPER12* SpoiltCopy<Wide>(const XLOPER12&, const ArgumentFault&, std::vector<SpoiltMemory>&,
                                           std::string&);
extern template XLOPER* SpoiltCopy<Narrow>(const XLOPER&, const ArgumentFault&, std::vector<SpoiltMemory>&,
                                           std::string&);

}  // namespace qcalc
