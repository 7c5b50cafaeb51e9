#include "text/regex/regex_budget.h"

#include <algorithm>

#include "frame/entry/coarse_clock.h"
#include "frame/entry/thread_clock.h"

namespace quillmere::text {

std::int64_t RegexBudget::Now() noexcept {
  const std::uint64_t tick = CoarseTime();
  if (tick != asked_) {
    asked_ = tick;
    answer_ = static_cast<std::int64_t>(ThreadTime());
  }
  return answer_;
}

void RegexBudget::Use(std::int64_t microseconds, std::int64_t forNothing) noexcept {
  // The clock ticks seldom: one tick stands for many texts that took less than they may.
  if (forNothing == 0)
    paidTime_ += microseconds;
  else
    slowTime_ = std::max<std::int64_t>(0, slowTime_ + microseconds - forNothing);
  if (paidTime_ + slowTime_ >= kMicroseconds) steps_ = 0;
}

}  // namespace quillmere::text
