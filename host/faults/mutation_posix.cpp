#include "host/api/oper_types.h"
#include "host/faults/mutation.h"

namespace qcalc {

std::string WhyNotOffered(const Mutation& mutation) {
  switch (mutation.kind) {
    case MutationKind::kLength:
    case MutationKind::kDims:
    case MutationKind::kPointer:
      return "lengths and sizes that lie, and bad pointers, are for the Windows build alone";
    case MutationKind::kType:
      if (HasMemory(static_cast<std::uint32_t>(mutation.number) & kTypeBits))
        return "a type that makes a pointer of what is none is for the Windows build alone";
      return {};
    default:
      return {};
  }
}

}  // namespace qcalc
