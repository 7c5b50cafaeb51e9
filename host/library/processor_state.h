// How the processor calculates with floating point on this thread.
#pragma once

#include <cstdint>

namespace qcalc {

/// Rounding mode, treatment of subnormal numbers and masked faults, of both units; not what has happened so far.
struct ProcessorState {
  std::uint32_t sse = 0;  ///< the control bits of MXCSR
  std::uint16_t x87 = 0;  ///< the control word
  bool operator==(const ProcessorState&) const = default;

  static ProcessorState Current() noexcept;
  void Restore() const noexcept;
};

}  // namespace qcalc
