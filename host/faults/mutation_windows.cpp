#include "host/faults/mutation.h"

namespace qcalc {

std::string WhyNotOffered(const Mutation&) { return {}; }

}  // namespace qcalc
