// What goes wrong on purpose: that it does, just there, just once, and that the host stays whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/library/allocation.h"
#include "host/scripts/session.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Faults : public ::testing::Test {
 protected:
  std::string Evaluate(const std::string& text) {
    const auto formula = ParseFormula(text);
    return PrintLiteral(session.Contents(session.Evaluate(*formula)));
  }
  std::vector<std::string> Complaints() { return session.Host().complaints.Take(); }
  void Mutate(ArgumentFaultKind kind, std::int64_t number = 0, std::int32_t rows = 0, std::int32_t columns = 0) {
    session.Host().faults.SpoilArgument({1, kind, number, rows, columns});
  }
  CallbackMeter& Meter() { return session.Host().meter; }

  Session session{ProgramFolder() / "misbehaving.xll"};
  AllocationMeter& allocations = AddinAllocations();
};

TEST_F(Faults, TheAddinsAllocationsAloneAreCountedAndFail) {
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "7");
  EXPECT_EQ(allocations.Count(), 7);
  EXPECT_EQ(allocations.Failed(), 0);
  allocations.Fail(3, AllocationFailure::kOnce);
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "6");
  EXPECT_EQ(allocations.Failed(), 1);
  allocations.Fail(3, AllocationFailure::kFromThenOn);
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "2");
  EXPECT_EQ(allocations.Failed(), 5);
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "7") << "what was armed is over";
  allocations.Fail(2, AllocationFailure::kOnce);
  EXPECT_EQ(Evaluate("=ENLARGE()"), "0");
  EXPECT_EQ(Evaluate("=ENLARGE()"), "1");
  EXPECT_EQ(allocations.Count(), 2);
}

TEST_F(Faults, AllocationsAreCountedOverAllThreads) {
  constexpr int kThreads = 4, kEvaluations = 50;
  session.EvaluateInParallel(kThreads, kEvaluations, *ParseFormula("=ALLOCATE(6,0)"));
  EXPECT_EQ(allocations.Count(), 6 * kThreads * kEvaluations);
  allocations.Fail(400, AllocationFailure::kOnce);
  const std::vector<Value> results =
      session.EvaluateInParallel(kThreads, kEvaluations, *ParseFormula("=ALLOCATE(6,0)"));
  EXPECT_EQ(allocations.Failed(), 1);
  EXPECT_NE(results.size(), 1u) << "one call has got one block less";
}

TEST_F(Faults, BlocksAreKnownUntilTheyAreFreedWhereverThatIs) {
  Evaluate("=ALLOCATE(1,0)");
  allocations.TrackBlocks();
  const std::int64_t before = allocations.LiveBlocks();
  const std::uint64_t mark = allocations.LatestNumber();
  EXPECT_EQ(Evaluate("=ALLOCATE(2000,3)"), "2000");
  EXPECT_EQ(allocations.LiveBlocks(), before + 3);
  const std::vector<LiveBlock> kept = allocations.LiveBlocksAfter(mark);
  ASSERT_EQ(kept.size(), 3u);
  EXPECT_EQ(kept[2].bytes, 100u);
  EXPECT_EQ(kept[2].number, mark + 3);
  Evaluate("=ENLARGE()");
  EXPECT_EQ(allocations.LiveBlocks(), before + 3);
  EXPECT_EQ(session.CallClose(), 1);
  EXPECT_EQ(allocations.LiveBlocks(), before);
}

TEST_F(Faults, ArgumentsArriveSpoiltOnce) {
  EXPECT_EQ(Evaluate("=DESCRIBE(1.5)"), "{1,0,0,0}");
  Mutate(ArgumentFaultKind::kNull);
  EXPECT_EQ(Evaluate("=DESCRIBE(1.5)"), "{-1,0,0,0}");
  Mutate(ArgumentFaultKind::kType, 0x0200);
  EXPECT_EQ(Evaluate("=DESCRIBE(1.5)"), "{512,0,0,0}");
  Mutate(ArgumentFaultKind::kBits, 0x5000);
  EXPECT_EQ(Evaluate("=DESCRIBE(\"abc\")"), "{20482,3,0,0}");
  Mutate(ArgumentFaultKind::kNested);
  EXPECT_EQ(Evaluate("=DESCRIBE({1,2;3,4})"), "{64,2,2,64}");
  Mutate(ArgumentFaultKind::kNested);
  Mutate(ArgumentFaultKind::kBits, 0x1000);
  EXPECT_EQ(Evaluate("=DESCRIBE(7)"), "{4160,1,1,64}") << "one damage on top of the other";
  EXPECT_EQ(Evaluate("=DESCRIBE(\"abc\")"), "{2,3,0,0}");
  EXPECT_THAT(Complaints(), IsEmpty());
}

#ifdef _WIN32
TEST_F(Faults, LengthsAndSizesLie) {
  Mutate(ArgumentFaultKind::kLength, 700);
  EXPECT_EQ(Evaluate("=DESCRIBE(\"abc\")"), "{2,700,0,0}");
  Mutate(ArgumentFaultKind::kDims, 0, 300, -2);
  EXPECT_EQ(Evaluate("=DESCRIBE({1,\"a\"})"), "{64,300,-2,1}");
  Mutate(ArgumentFaultKind::kDims, 0, 1, 2);
  EXPECT_THROW(Evaluate("=DESCRIBE(1)"), FormulaError);
  Mutate(ArgumentFaultKind::kLength, 5);
  EXPECT_THROW(Evaluate("=DESCRIBE({1,2})"), FormulaError);
}
#else
TEST_F(Faults, WhatFaultsTheProcessorIsRefused) {
  Mutate(ArgumentFaultKind::kLength, 5);
  EXPECT_THROW(Evaluate("=DESCRIBE(\"abc\")"), FormulaError);
  Mutate(ArgumentFaultKind::kType, xltypeStr);
  EXPECT_THROW(Evaluate("=DESCRIBE(1)"), FormulaError);
}
#endif

TEST_F(Faults, DamageThatCannotBeDoneIsTold) {
  session.Host().faults.SpoilArgument({2, ArgumentFaultKind::kNull});
  EXPECT_THROW(Evaluate("=DESCRIBE(1)"), FormulaError);
  session.Host().faults.SpoilArgument({1, ArgumentFaultKind::kBits, 1});
  EXPECT_THROW(Evaluate("=ALLOCATE(1,0)"), FormulaError);
  EXPECT_EQ(Evaluate("=DESCRIBE(1)"), "{1,0,0,0}");
}

TEST_F(Faults, DamageLeavesNothingBehind) {
  session.Names()[XTEXT("large")] = session.EvaluateQuietly(*ParseFormula("=SEQUENCE(5000)"));
  EXPECT_EQ(Evaluate("=DESCRIBE(large)"), "{64,5000,1,1}");
  Mutate(ArgumentFaultKind::kNested);
  EXPECT_EQ(Evaluate("=DESCRIBE(large)"), "{64,5000,1,64}");
  EXPECT_EQ(Evaluate("=DESCRIBE(large)"), "{64,5000,1,1}");
}

TEST_F(Faults, ChangedArgumentsShowThroughDamage) {
  for (const char* formula : {"=CHANGE.ARGUMENT(1,2)", "=CHANGE.ARGUMENT(1,{2,3})"}) {
    session.Host().faults.SpoilArgument({2, ArgumentFaultKind::kBits, 0x1000});
    Evaluate(formula);
    EXPECT_THAT(Complaints(), ElementsAre("CHANGE.ARGUMENT changed its argument 2")) << formula;
  }
}

TEST_F(Faults, AFaultOfTheHostsInACallbackIsItsOwnAffair) {
  Meter().FaultIn(*FindXlCallback("xlCoerce"));
  EXPECT_EQ(Evaluate("=COERCED(5,2)"), "\"5\"");
  EXPECT_THAT(Complaints(), IsEmpty());
}

TEST_F(Faults, ResultsAreFreedTwice) {
  EXPECT_EQ(Evaluate("=FREE.COUNT()"), "0");
  session.Host().faults.FreeTwice();
  EXPECT_EQ(Evaluate("=FREE.COUNT()"), "1");
  EXPECT_EQ(Evaluate("=FREE.COUNT()"), "3");
  EXPECT_EQ(Evaluate("=FREE.COUNT()"), "4");
}

TEST_F(Faults, ReloadingStartsAfreshAndSeesALibraryThatStays) {
  Evaluate("=FREE.COUNT()");
  EXPECT_EQ(Evaluate("=FREE.COUNT()"), "1");
  session.Reload(3);
  EXPECT_EQ(Evaluate("=FREE.COUNT()"), "0");
  EXPECT_THAT(Complaints(), IsEmpty());
  std::string error;
  const std::unique_ptr<Library> held = Library::Load(ProgramFolder() / "misbehaving.xll", error);
  session.Reload(1);
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("still mapped")));
}

}  // namespace
}  // namespace qcalc
