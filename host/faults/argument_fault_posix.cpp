#include "host/api/oper_types.h"
#include "host/faults/argument_fault.h"

namespace qcalc {
namespace {

/// The one bit among those of the types that no type has: a reader that passes it over sees the others.
constexpr std::uint32_t kBitOfNoType = 0x0200;

}  // namespace

std::string WhyNotOffered(const ArgumentFault& fault) {
  switch (fault.kind) {
    case ArgumentFaultKind::kLength:
    case ArgumentFaultKind::kDims:
    case ArgumentFaultKind::kPointer:
      return "lengths and sizes that lie, and bad pointers, are for the Windows build alone";
    case ArgumentFaultKind::kType:
      if (HasMemory(static_cast<std::uint32_t>(fault.number) & kTypeBits & ~kBitOfNoType))
        return "a type that makes a pointer of what is none is for the Windows build alone";
      return {};
    default:
      return {};
  }
}

}  // namespace qcalc
