#include "text/regex/regex_budget.h"

#include "frame/entry/coarse_clock.h"
#include "frame/entry/thread_clock.h"

namespace quillmere::text {

std::uint64_t RegexBudget::Now() noexcept {
  const std::uint64_t tick = CoarseTime();
  if (tick != asked_) {
    asked_ = tick;
    answer_ = ThreadTime();
  }
  return answer_;
}

}  // namespace quillmere::text
