#include "tests/models/random_calls.h"

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

namespace qcalc::models {
namespace {

const Run* currentRun = nullptr;

}  // namespace

void BeginRun(const Run& run) { currentRun = &run; }

const Run& TheRun() { return *currentRun; }

void TryCalls(const std::function<std::string(std::uint64_t number)>& attempt) {
  constexpr int kMostTold = 5;
  const RunSettings& settings = TheRun().settings;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(settings.seconds);
  std::uint64_t number = 0;
  for (int told = 0; told < kMostTold; ++number) {
    const bool isDone = settings.seconds > 0 ? std::chrono::steady_clock::now() >= end : number == settings.cases;
    if (isDone) break;
    const std::string wrong = attempt(number);
    if (wrong.empty()) continue;
    ADD_FAILURE() << "--seed " << settings.seed << ", call " << number << ":\n  " << wrong;
    ++told;
  }
  std::cout << number << " calls\n";
}

}  // namespace qcalc::models
