// What the regular expressions of one worksheet call may cost together. No expression may keep Excel waiting, and few
// of those that would can be told by their looks.
#pragma once

#include <cstdint>

namespace quillmere::text {

/// The steps and the processor time that the expressions of one call share. A step is a look at a unit of a text, or at
/// its end. Each text has steps of its own, more than any ordinary expression takes; what goes beyond those is paid
/// from here. One thread uses it.
class RegexBudget {
 public:
  RegexBudget() = default;
  RegexBudget(const RegexBudget&) = delete;
  RegexBudget& operator=(const RegexBudget&) = delete;

  /// Whether nothing is left: whatever takes more than a text's own steps then fails at once.
  bool IsSpent() const noexcept { return steps_ == 0; }

 private:
  friend class RegexSteps;

  static constexpr std::int64_t kSteps = 20'000'000;
  static constexpr std::int64_t kMicroseconds = 1'000'000;

  /// The thread's processor time in microseconds as of the latest tick of the coarse clock: asking costs more than many
  /// steps.
  std::int64_t Now() noexcept;
  /// Notes time that was used, less what comes with it for nothing.
  void Use(std::int64_t microseconds, std::int64_t forNothing) noexcept;

  std::int64_t steps_ = kSteps;
  std::int64_t paidTime_ = 0;  ///< of paid steps
  std::int64_t slowTime_ = 0;  ///< of a text's own steps, beyond what those may take
  std::uint64_t asked_ = 0;    ///< when the thread's time was asked for
  std::int64_t answer_ = 0;    ///< what it was
};

}  // namespace quillmere::text
