// A program that ends while a thread is inside a function of the add-in's: the system takes the thread away wherever it
// is, and what the add-in does then may wait for nothing that the thread would have done.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "host/calculation/evaluator.h"
#include "host/scripts/session.h"

namespace qcalc {
namespace {

[[noreturn]] void EndWhileAThreadCalculates() {
  auto& session = *new Session(ProgramFolder() / "Quillmere4.xll");  // the thread's for as long as there is one
  session.Names()[XTEXT("keys")] = session.EvaluateQuietly(*ParseFormula("=SEQUENCE(20000)"));
  const Formula formula = *ParseFormula("=MEMMATCH(7,keys)+SUM(AMATCH2(keys,keys))");
  const EvaluationContext context = session.Prepare(formula);
  std::atomic<int> calls{0};
  std::thread([&] {
    for (;; ++calls) qcalc::Evaluate(formula, context);
  }).detach();
  while (calls < 3) std::this_thread::yield();
  std::exit(0);
}

TEST(ProgramEnd, WaitsForNoThreadThatCalculates) {
  for (int i = 0; i < 10; ++i) EXPECT_EXIT(EndWhileAThreadCalculates(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace qcalc
