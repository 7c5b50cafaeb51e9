#include "host/faults/argument_fault.h"

namespace qcalc {

std::string WhyNotOffered(const ArgumentFault&) { return {}; }

}  // namespace qcalc
