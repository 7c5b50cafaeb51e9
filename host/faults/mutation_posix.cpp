#include "host/faults/mutation.h"
#include "xlcall/xlcall.h"

namespace qcalc {

std::string WhyNotOffered(const Mutation& mutation) {
  constexpr std::uint32_t kTypeMask = 0x0FFF;
  switch (mutation.kind) {
    case MutationKind::kLength:
    case MutationKind::kDims:
    case MutationKind::kPointer:
      return "lengths and sizes that lie, and bad pointers, are for the Windows build alone";
    case MutationKind::kType: {
      const auto type = static_cast<std::uint32_t>(mutation.number) & kTypeMask;
      if (type == xltypeStr || type == xltypeMulti || type == xltypeRef)
        return "a type that makes a pointer of what is none is for the Windows build alone";
      return {};
    }
    default:
      return {};
  }
}

}  // namespace qcalc
