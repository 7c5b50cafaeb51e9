// The threads that formulas are calculated on.
#pragma once

#include <functional>

namespace qcalc {

/// Threads that stand ready. Used from the main thread, which is one of them.
class ICalculationThreads {
 public:
  virtual ~ICalculationThreads() = default;
  virtual int Count() const = 0;
  /// Runs `work` with the numbers 0 to Count() - 1, 0 on the main thread, all at once; returns when all are done. What
  /// one of them throws is thrown here.
  virtual void Run(const std::function<void(int)>& work) = 0;
};

}  // namespace qcalc
