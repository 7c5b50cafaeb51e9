// What the calls of functions cost.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

#include "host/text/letter_case.h"

namespace qcalc {

/// Calls and time by function, noted from any thread.
class FunctionProfile {
 public:
  using Clock = std::chrono::steady_clock;
  struct Entry {
    XString name;
    std::int64_t calls = 0;
    Clock::duration time{};  ///< of all calls, without that of the operands
  };

  void Note(XStringView name, Clock::duration time);
  /// At most so many, those that took most time first; of equal ones in the order of their names.
  std::vector<Entry> Slowest(std::size_t count) const;

 private:
  mutable std::mutex mutex_;
  CaselessMap<XString, Entry> entries_;
};

/// Notes one call for as long as it lives, also one that ends by an exception; without a profile nothing.
class CallTimer {
 public:
  /// `name` outlives the timer.
  CallTimer(FunctionProfile* profile, XStringView name) : profile_(profile), name_(name) {
    if (profile_) start_ = FunctionProfile::Clock::now();
  }
  ~CallTimer() {
    if (profile_) profile_->Note(name_, FunctionProfile::Clock::now() - start_);
  }
  CallTimer(const CallTimer&) = delete;
  CallTimer& operator=(const CallTimer&) = delete;

 private:
  FunctionProfile* profile_;
  XStringView name_;
  FunctionProfile::Clock::time_point start_;
};

}  // namespace qcalc
