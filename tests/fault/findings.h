// Where the trials of one test are numbered, and what they found is told.
#pragma once

#include <gtest/gtest.h>

#include "host/process/journal.h"
#include "suites.h"

namespace qcalc::fault {

class Findings {
 public:
  explicit Findings(const SuiteSettings& settings) : settings_(settings) {}

  /// What the trial is called in a report: how to make it again, and the call.
  std::string NameOf(std::uint64_t number, const std::string& call) const {
    return "--seed " + std::to_string(settings_.seed) + " --only " + std::to_string(number) + ": " + call;
  }

  /// Makes one trial on the main thread and tells what is wrong. False when enough has been told.
  bool Try(TrialRunner& runner, const Trial& trial, std::uint64_t number) {
    const std::string name = NameOf(number, trial.Describe());
    const CallNote note(name);
    return Tell(name, runner.Try(trial));
  }

  bool Tell(const std::string& name, const std::string& wrong) {
    constexpr int kMostTold = 5;
    if (wrong.empty()) return true;
    ADD_FAILURE() << name << "\n  " << wrong;
    return ++told_ < kMostTold;
  }

 private:
  const SuiteSettings& settings_;
  int told_ = 0;
};

/// Registers a test with GoogleTest, which makes it of the arguments; they outlive it.
template <typename Test, typename... Arguments>
void Register(const std::string& suite, const char* name, Arguments&... arguments) {
  testing::RegisterTest(suite.c_str(), name, nullptr, nullptr, __FILE__, __LINE__,
                        [&arguments...]() -> testing::Test* { return new Test(arguments...); });
}

}  // namespace qcalc::fault
