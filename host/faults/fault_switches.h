// What goes wrong on purpose during the next evaluation, beside the callbacks and allocations that fail.
#pragma once

#include <atomic>
#include <string>
#include <utility>
#include <vector>

#include "host/faults/argument_fault.h"

namespace qcalc {

/// Armed between evaluations, read on any thread during one.
class FaultSwitches {
 public:
  /// The next evaluation hands over an argument spoilt, in every call of an add-in function that it makes. A call
  /// without such an argument, or with one that cannot be spoilt so, ends the evaluation with a FormulaError.
  void SpoilArgument(const ArgumentFault& fault) { argumentFaults_.push_back(fault); }

  /// The next evaluation hands every result to xlAutoFree12 (xlAutoFree) twice, also one that is not marked for it.
  void FreeTwice() { freesTwice_ = true; }

  void Start() { isRunning_ = true; }
  void Stop() {
    if (!argumentFaults_.empty() && !hasSpoilt_) unmet_.push_back("mutate: no argument was handed over");
    if (freesTwice_ && !hasFreedTwice_) unmet_.push_back("double-free: no result came");
    isRunning_ = freesTwice_ = hasSpoilt_ = hasFreedTwice_ = false;
    argumentFaults_.clear();
  }

  /// The damage due to the arguments of a call that is made now.
  const std::vector<ArgumentFault>& TakeArgumentFaults() {
    if (!isRunning_) return kNone;
    hasSpoilt_ = true;
    return argumentFaults_;
  }
  /// Whether the result that is given back now is to be freed once more.
  bool TakeSecondFreeing() {
    if (!isRunning_ || !freesTwice_) return false;
    hasFreedTwice_ = true;
    return true;
  }

  /// What was to happen in the last evaluation for which that was asked, and did not.
  std::vector<std::string> TakeUnmet() { return std::exchange(unmet_, {}); }

 private:
  static inline const std::vector<ArgumentFault> kNone;

  std::atomic<bool> isRunning_{false};
  bool freesTwice_ = false;
  std::atomic<bool> hasSpoilt_{false};
  std::atomic<bool> hasFreedTwice_{false};
  std::vector<std::string> unmet_;
  std::vector<ArgumentFault> argumentFaults_;
};

}  // namespace qcalc
