// What belongs to the thread that calls in, or to the whole process, and is not left as it was.
#include <atomic>
#include <cfenv>
#include <filesystem>
#include <thread>

#include "tests/misbehaving/misbehaving.h"

using namespace misbehaving;

namespace {

std::atomic<bool> mustStop{false};
std::thread left;

}  // namespace

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// `which` chooses what is changed: how numbers are rounded, faults of SSE arithmetic or of the x87 unit, subnormal
/// numbers, or the current folder.
QCALC_EXPORT XLOPER12* ChangeThread(std::int32_t which) {
  std::uint32_t sse = 0;
  std::uint16_t x87 = 0;
  asm volatile("stmxcsr %0\n\tfnstcw %1" : "=m"(sse), "=m"(x87));
  constexpr std::uint32_t kDivisionMask = 0x200, kFlushToZero = 0x8000;
  constexpr std::uint16_t kDivisionMask87 = 4;
  if (which == 1) std::fesetround(FE_UPWARD);
  if (which == 2) sse &= ~kDivisionMask;
  if (which == 3) x87 = static_cast<std::uint16_t>(x87 & ~kDivisionMask87);
  if (which == 4) sse |= kFlushToZero;
  if (which > 1) asm volatile("ldmxcsr %0\n\tfldcw %1" : : "m"(sse), "m"(x87));
  if (which == 5) std::filesystem::current_path(std::filesystem::temp_directory_path());
  return Owned(Number(1));
}

/// Starts a thread that nobody ends before the library goes.
QCALC_EXPORT XLOPER12* LeaveThread() {
  left = std::thread([] {
    while (!mustStop) std::this_thread::yield();
  });
  return Owned(Number(1));
}

/// Ends it after all: for the test, to be called when the library should have been gone.
QCALC_EXPORT void EndThread() {
  mustStop = true;
  left.join();
}
