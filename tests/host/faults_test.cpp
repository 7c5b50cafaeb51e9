// What goes wrong on purpose: that it does, just there, just once, and that the host stays whole.
#include "host/library/allocation.h"
#include "tests/host/session_fixture.h"

namespace qcalc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Faults : public SessionTest {
 protected:
  /// What arrives of an argument that is spoilt.
  std::string Describe(const std::string& argument, std::initializer_list<ArgumentFault> faults = {}) {
    for (const ArgumentFault& fault : faults) session.Host().faults.SpoilArgument(fault);
    try {
      return Evaluate("=DESCRIBE(" + argument + ")");
    } catch (const FormulaError&) {
      return "not called";
    }
  }

  AllocationMeter& allocations = AddinAllocations();
};

TEST_F(Faults, TheAddinsAllocationsAloneAreCountedAndFail) {
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "7");
  EXPECT_EQ(allocations.Count(), 7);
  allocations.Fail(3, AllocationFailure::kFromThenOn);
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "2");
  EXPECT_EQ(allocations.Failed(), 5);
  EXPECT_EQ(Evaluate("=ALLOCATE(7,0)"), "7") << "what was armed is over";
  EXPECT_EQ(allocations.Failed(), 0);
  allocations.Fail(2, AllocationFailure::kOnce);
  EXPECT_EQ(Evaluate("=ENLARGE()"), "0");
  EXPECT_EQ(Evaluate("=ENLARGE()"), "1");
  EXPECT_EQ(allocations.Count(), 2);
  allocations.Fail(400, AllocationFailure::kOnce);
  const std::vector<Value> results = session.EvaluateInParallel(4, 50, *ParseFormula("=ALLOCATE(6,0)"));
  EXPECT_EQ(allocations.Count(), 4 * 50 * 6);
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
  using enum ArgumentFaultKind;
  session.Names()[XTEXT("large")] = session.EvaluateQuietly(*ParseFormula("=SEQUENCE(5000)"));
  EXPECT_EQ(Describe("1.5", {{1, kNull}}), "{-1,0,0,0}");
  EXPECT_EQ(Describe("1.5"), "{1,0,0,0}");
  EXPECT_EQ(Describe("1.5", {{1, kType, 0x0200}}), "{512,0,0,0}");
  EXPECT_EQ(Describe("\"abc\"", {{1, kBits, 0x5000}}), "{20482,3,0,0}");
  EXPECT_EQ(Describe("large", {{1, kNested}}), "{64,5000,1,64}");
  EXPECT_EQ(Describe("large"), "{64,5000,1,1}") << "in what is laid out once as well";
  EXPECT_EQ(Describe("7", {{1, kNested}, {1, kBits, 0x1000}}), "{4160,1,1,64}") << "one damage on top of the other";
  EXPECT_EQ(Describe("1", {{2, kNull}}), "not called");
#ifdef _WIN32
  EXPECT_EQ(Describe("\"abc\"", {{1, kLength, 700}}), "{2,700,0,0}");
  EXPECT_EQ(Describe("{1,\"a\"}", {{1, kDims, 0, 300, -2}}), "{64,300,-2,1}");
  EXPECT_EQ(Describe("1", {{1, kDims, 0, 1, 2}}), "not called");
  EXPECT_EQ(Describe("{1,2}", {{1, kLength, 5}}), "not called");
#else
  EXPECT_EQ(Describe("\"abc\"", {{1, kLength, 5}}), "not called") << "what faults the processor";
  EXPECT_EQ(Describe("1", {{1, kType, xltypeStr}}), "not called");
#endif
  session.Host().faults.SpoilArgument({1, kBits, 1});
  EXPECT_THROW(Evaluate("=ALLOCATE(1,0)"), FormulaError);
  EXPECT_EQ(Describe("\"abc\""), "{2,3,0,0}");
}

TEST_F(Faults, ChangedArgumentsShowThroughDamageToo) {
  session.Names()[XTEXT("large")] = session.EvaluateQuietly(*ParseFormula("=SEQUENCE(5000)"));
  for (const std::string argument : {"2", "{2,3}", "large"})
    for (const bool isSpoilt : {false, true}) {
      if (isSpoilt) session.Host().faults.SpoilArgument({2, ArgumentFaultKind::kBits, 0x1000});
      CheckTold("=CHANGE.ARGUMENT(1," + argument + ") -> 1, CHANGE.ARGUMENT changed its argument 2");
    }
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
