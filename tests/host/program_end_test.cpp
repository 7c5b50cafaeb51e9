// A program that ends while a thread is inside a function of the add-in's. Windows takes the thread away wherever it
// is, and what the add-in does then may wait for nothing that the thread would have done, nor look at what it left half
// done; elsewhere the thread goes on while everything static is destroyed.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "host/calculation/evaluator.h"
#include "host/scripts/session.h"

namespace qcalc {
namespace {

[[noreturn]] void EndWhileAThreadCalculates() {
  // The last thing before the end, since the library comes later.
  std::atexit([] { std::this_thread::sleep_for(std::chrono::milliseconds(50)); });
  auto& session = *new Session(ProgramFolder() / "Quillmere4.xll");  // the thread's for as long as there is one
  session.Names()[XTEXT("rows")] = session.EvaluateQuietly(*ParseFormula("=SEQUENCE(2000)"));
  const Area column{0, 1999, 0, 0};
  session.CurrentSheet().WriteResult(column, session.Names()[XTEXT("rows")]);
  session.SetCaller({session.CurrentSheet().Id(), {column}});  // each row has a memory of its own
  const Formula formula = *ParseFormula("=SUM(AMATCH2(rows,A1:A2000))");
  const EvaluationContext context = session.Prepare();
  std::atomic<int> calls{0};
  std::thread([&] {
    for (;; ++calls) qcalc::Evaluate(formula, context);
  }).detach();
  while (calls < 3) std::this_thread::yield();
  std::exit(0);
}

TEST(ProgramEnd, WaitsForNoThreadThatCalculates) {
  for (int i = 0; i < 5; ++i) EXPECT_EXIT(EndWhileAThreadCalculates(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace qcalc
