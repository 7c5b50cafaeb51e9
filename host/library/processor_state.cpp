#include "host/library/processor_state.h"

namespace qcalc {
namespace {

constexpr std::uint32_t kSseFlags = 0x3F;

}  // namespace

ProcessorState ProcessorState::Current() noexcept {
  ProcessorState state;
  asm volatile("stmxcsr %0\n\tfnstcw %1" : "=m"(state.sse), "=m"(state.x87));
  state.sse &= ~kSseFlags;
  return state;
}

void ProcessorState::Restore() const noexcept { asm volatile("ldmxcsr %0\n\tfldcw %1" : : "m"(sse), "m"(x87)); }

}  // namespace qcalc
