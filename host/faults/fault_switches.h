// What goes wrong on purpose during the next evaluation, beside the callbacks and allocations that fail.
#pragma once

#include <atomic>
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
    isRunning_ = freesTwice_ = false;
    argumentFaults_.clear();
  }

  /// The damage due now.
  const std::vector<ArgumentFault>& ArgumentFaults() const { return isRunning_ ? argumentFaults_ : kNone; }
  bool FreesTwice() const { return isRunning_ && freesTwice_; }

 private:
  static inline const std::vector<ArgumentFault> kNone;

  std::atomic<bool> isRunning_{false};
  bool freesTwice_ = false;
  std::vector<ArgumentFault> argumentFaults_;
};

}  // namespace qcalc
