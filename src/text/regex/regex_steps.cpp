#include "text/regex/regex_steps.h"

#include <algorithm>

#include "frame/locale/regex_library.h"

namespace quillmere::text {

[[gnu::cold]] void RegexSteps::Pay() {
  constexpr std::int64_t kBetweenLooks = 4'096;
  if (!pays_) since_ = budget_.Now();
  pays_ = true;
  TakeTime();
  if (budget_.IsSpent()) {
    left_ = 0;
    throw CXlRegexLimitException(LibraryMessage(boost::regex_constants::error_complexity));
  }
  left_ = std::min(budget_.steps_, kBetweenLooks);
  budget_.steps_ -= left_;
  --left_;
}

void RegexSteps::TakeTime() noexcept {
  const std::uint64_t now = budget_.Now();
  budget_.time_ += now - since_;
  since_ = now;
}

[[gnu::cold]] void RegexSteps::StopPaying() noexcept {
  TakeTime();
  budget_.steps_ += left_;
}

}  // namespace quillmere::text
