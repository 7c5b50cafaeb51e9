// The tests: for every registered function each argument with everything that can be wrong with it, and random calls
// with several things wrong at once.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "trial.h"

namespace qcalc::fault {

struct SuiteSettings {
  std::uint64_t seed = 1;
  /// Of each test the trial of that number alone.
  std::optional<std::uint64_t> only;
  /// Trials of all functions together of each kind; taken evenly out of all there are, by the seed.
  std::uint64_t trials = 4000;
  /// Random calls on one thread, and rounds of them on all threads.
  std::uint64_t draws = 3000;
  std::uint64_t rounds = 60;
  /// Seconds of random calls, in place of their number; 0: the number holds.
  int seconds = 0;
};

/// Registers the tests of all functions with GoogleTest. Both outlive them.
void RegisterFunctionSuites(TrialRunner& runner, const SuiteSettings& settings);
/// Registers the random calls.
void RegisterRandomSuites(TrialRunner& runner, const SuiteSettings& settings);

}  // namespace qcalc::fault
