#include "text/regex/regex_steps.h"

#include <algorithm>

#include "frame/locale/regex_library.h"

namespace quillmere::text {
namespace {

constexpr std::int64_t kOwnSteps = 64;            ///< for a text, and for each of its units
constexpr std::int64_t kBetweenLooks = 4'096;     ///< steps between two looks at the clock
constexpr std::int64_t kStepsInAMicrosecond = 2;  ///< when they are slow; most take a hundredth of that

}  // namespace

RegexSteps::RegexSteps(std::size_t units, StepLength length, RegexBudget& budget) noexcept
    : own_(kOwnSteps * (1 + static_cast<std::int64_t>(units))), budget_(budget), isTimed_(length == StepLength::kAny) {
  left_ = taken_ = isTimed_ ? std::min(own_, kBetweenLooks) : own_;
  own_ -= taken_;
  if (isTimed_) since_ = budget_.Now();
}

[[gnu::cold]] void RegexSteps::TakeMore() {
  left_ = 0;
  if (isTimed_) UseTime();
  if (own_ == 0 && !pays_) {
    pays_ = true;
    if (!isTimed_) since_ = budget_.Now();
    isTimed_ = true;
  }
  taken_ = std::min(pays_ ? budget_.steps_ : own_, kBetweenLooks);
  if (budget_.IsSpent()) {
    taken_ = 0;
    throw CXlRegexLimitException(LibraryMessage(boost::regex_constants::error_complexity));
  }
  (pays_ ? budget_.steps_ : own_) -= taken_;
  left_ = taken_ - 1;
}

void RegexSteps::UseTime() noexcept {
  const std::int64_t now = budget_.Now();
  budget_.Use(now - since_, pays_ ? 0 : (taken_ - left_) / kStepsInAMicrosecond);
  since_ = now;
}

[[gnu::cold]] void RegexSteps::Stop() noexcept {
  UseTime();
  if (pays_ && !budget_.IsSpent()) budget_.steps_ += left_;
}

}  // namespace quillmere::text
