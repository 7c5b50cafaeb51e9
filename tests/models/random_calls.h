// One run of the program: a family's test makes one random call after the other, until it is enough.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tests/models/caller.h"

namespace qcalc::models {

struct RunSettings {
  std::uint64_t seed = 1;
  /// Calls of each test.
  std::uint64_t cases = 3000;
  /// Seconds of calls of each test, in place of their number; 0: the number holds.
  int seconds = 0;
};

/// What the tests of a run share. It outlives them.
struct Run {
  RunSettings settings;
  Caller& caller;
};

/// Before the tests: the run that they are part of.
void BeginRun(const Run& run);
const Run& TheRun();

/// Calls `attempt` with one number after the other. It makes the call of that number and returns what is wrong with it,
/// "" when nothing; a few of these are told.
void TryCalls(const std::function<std::string(std::uint64_t number)>& attempt);

}  // namespace qcalc::models
