// The frame's fault guard, shown on a library that provokes the faults.
#include <pthread.h>
#include <windows.h>
#include <xmmintrin.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "host/calculation/evaluator.h"
#include "host/library/allocation.h"
#include "tests/host/session_fixture.h"

namespace qcalc {
namespace {

using ::testing::IsEmpty;

constexpr char kAccessViolation[] = "\"#ERROR: 'C' exception 0xC0000005\"";
constexpr char kStackOverflow[] = "\"#ERROR: 'C' exception 0xC00000FD\"";
constexpr char kTerminated[] = "\"#ERROR: 'C' structured exception occurred\"";

/// What each kind of fault leaves in the cell when the value handed along is 7, and how many blocks of memory it loses.
struct Kind {
  const char* name;
  std::vector<std::string> results;
  int lostBlocks;
};

/// What PROVOKE itself owns when an escape skips its frame: a text.
constexpr int kOwned = 1;
/// An exception object, its 8-bit text, and its wide text with the units.
constexpr int kException = 4;

const Kind kKinds[] = {
    {"nothing", {"7"}, 0},
    {"read", {kAccessViolation}, 0},
    {"write", {kAccessViolation}, 0},
    // Windows may tell of an overflow where Wine tells of a division by zero.
    {"divide", {"\"#ERROR: 'C' exception 0xC0000094\"", "\"#ERROR: 'C' exception 0xC0000095\""}, 0},
    {"call", {kAccessViolation}, 0},
    {"instruction", {"\"#ERROR: 'C' exception 0xC000001D\""}, 0},
    {"leaf", {kAccessViolation}, 0},
    {"prologue", {kAccessViolation}, 0},
    {"epilogue bytes", {kAccessViolation}, 0},
    {"host copy", {kAccessViolation}, 0},
    {"locked read", {kAccessViolation}, 0},
    {"nested", {kAccessViolation}, 0},
    {"copy", {kAccessViolation}, 1 + kOwned + kException},
    {"locked copy", {kAccessViolation}, kOwned + kException},
    {"destructor", {kAccessViolation}, kOwned + kException},
    {"noexcept", {kAccessViolation}, kOwned + kException},
    {"terminate", {kTerminated}, kOwned},
    {"overflow", {kStackOverflow}, kOwned},
    {"large overflow", {kStackOverflow}, kOwned},
};

std::string Call(const std::string& kind) { return "=PROVOKE(\"" + kind + "\",7)"; }

class FaultGuard : public SessionTest {
 protected:
  FaultGuard() : SessionTest("faulting.xll") {}
};

TEST_F(FaultGuard, EachFaultEndsInItsCellAndLosesNothingButWhatAnEscapeSkips) {
  AllocationMeter& allocations = AddinAllocations();
  Evaluate(Call("nothing"));
  allocations.TrackBlocks();
  for (const Kind& kind : kKinds) {
    Evaluate(Call(kind.name));
    const std::int64_t before = allocations.LiveBlocks();
    constexpr int kCalls = 20;
    for (int i = 0; i < kCalls; ++i)
      EXPECT_THAT(kind.results, ::testing::Contains(Evaluate(Call(kind.name)))) << kind.name;
    EXPECT_EQ(allocations.LiveBlocks() - before, kCalls * kind.lostBlocks) << kind.name;
    EXPECT_EQ(Evaluate(Call("nothing")), "7") << "after " << kind.name;
    EXPECT_EQ(Evaluate(Call("held store")), "7") << "after " << kind.name;
  }
}

/// Bytes that the process has committed for itself. The system's own counters are not offered by every Wine.
std::size_t CommittedBytes() {
  std::size_t bytes = 0;
  MEMORY_BASIC_INFORMATION pages{};
  for (const char* at = nullptr; VirtualQuery(at, &pages, sizeof pages); at += pages.RegionSize)
    if (pages.State == MEM_COMMIT && pages.Type == MEM_PRIVATE) bytes += pages.RegionSize;
  return bytes;
}

/// Calls each of `kinds` in turn, `count` calls on each of eight threads; the number of wrong answers.
int CallOnEightThreads(Session& session, const std::vector<const Kind*>& kinds, int count) {
  std::vector<std::shared_ptr<const Formula>> formulas;
  for (const Kind* kind : kinds) formulas.push_back(std::make_shared<const Formula>(*ParseFormula(Call(kind->name))));
  const EvaluationContext context = session.Prepare();
  std::atomic<int> wrong{0};
  session.Host().mainThread.RunOnThreads(8, [&](int thread) {
    for (int i = 0; i < count; ++i) {
      const std::size_t which = static_cast<std::size_t>(i + thread) % kinds.size();
      const std::string result = PrintLiteral(qcalc::Evaluate(*formulas[which], context));
      const auto& expected = kinds[which]->results;
      if (std::find(expected.begin(), expected.end(), result) == expected.end()) ++wrong;
    }
  });
  // What was lent and given back is remembered until the account is closed.
  EXPECT_THAT(session.Host().loans.Close(), IsEmpty());
  return wrong;
}

TEST_F(FaultGuard, MixedFaultsOnEightThreadsGiveNoWrongAnswerAndLeakNothingWhereDestructorsRun) {
  std::vector<const Kind*> unwinding, escaping, overflowing{&kKinds[0]};
  for (const Kind& kind : kKinds) {
    const bool isOverflow = kind.results[0] == kStackOverflow;
    (isOverflow ? overflowing : kind.lostBlocks == 0 ? unwinding : escaping).push_back(&kind);
  }
  EXPECT_EQ(CallOnEightThreads(session, unwinding, 500), 0);
  const std::size_t before = CommittedBytes();
  EXPECT_EQ(CallOnEightThreads(session, unwinding, 14'000), 0);
  // Above 100,000 faults: a block of 64 bytes left by each would be 6 MB. What was lent takes a part of one meanwhile.
  EXPECT_LT(CommittedBytes(), before + (3u << 20));
  EXPECT_EQ(CallOnEightThreads(session, escaping, 500), 0);
  EXPECT_EQ(CallOnEightThreads(session, overflowing, 150), 0);
  EXPECT_EQ(Evaluate(Call("nothing")), "7");
}

TEST_F(FaultGuard, TheFloatEnvironmentIsTheDefaultInsideAndTheHostsAgainOutside) {
  Evaluate(Call("nothing"));
  const unsigned int before = _mm_getcsr();
  constexpr unsigned int kDivideByZeroMask = 0x0200;
  _mm_setcsr((before & ~kDivideByZeroMask) | _MM_ROUND_UP);
  const unsigned int unmasked = _mm_getcsr();
  const std::string result = Evaluate(Call("float division"));
  const unsigned int after = _mm_getcsr();
  _mm_setcsr(before);
  EXPECT_EQ(result, "7");
  EXPECT_EQ(after, unmasked);
}

/// The lowest handle that is free: handles that are lost push it up.
std::uintptr_t NextHandle() {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(event);
  return reinterpret_cast<std::uintptr_t>(event);
}

/// Has the library fault, remember and answer; what the last call gives stays with the thread, text and all.
void CallLoaded(const Library& library) {
  const auto put = library.FindAs<XLOPER12* (*)(XLOPER12*)>("Put_RowIDString_12");
  const auto get = library.FindAs<XLOPER12* (*)()>("Get_RowIdString_12");
  XCHAR units[] = L"\4text";
  XLOPER12 text{}, number{}, pair{}, wild{};
  text.val.str = units;
  text.xltype = wild.xltype = xltypeStr;
  wild.val.str = reinterpret_cast<XCHAR*>(8);
  number.xltype = xltypeNum;
  XLOPER12 cells[] = {text, number};
  pair.val.array = {cells, 1, 2};
  pair.xltype = xltypeMulti;
  EXPECT_EQ(put(&wild)->xltype, xltypeStr | xlbitDLLFree);
  EXPECT_EQ(put(&pair)->xltype, xltypeNum);
  XLOPER12* const entries = get();
  EXPECT_EQ(entries->val.array.rows, 2);
  library.FindAs<void (*)(XLOPER12*)>("xlAutoFree12")(entries);
  put(&wild);
}

TEST(Reloading, FiveHundredTimesUnderLivingThreadsLeavesNothingBehind) {
  AddinAllocations().TrackBlocks();
  Session session(ProgramFolder() / "Quillmere4.xll");
  // Three threads live on while libraries come and go; each calls what is loaded, all at the same time.
  // std::barrier does not always wake all who wait at it here.
  pthread_barrier_t turn{};
  pthread_barrier_init(&turn, nullptr, 4);
  bool isOver = false;
  std::vector<std::jthread> threads;
  for (int i = 0; i < 3; ++i)
    threads.emplace_back([&] {
      for (pthread_barrier_wait(&turn); !isOver; pthread_barrier_wait(&turn)) {
        CallLoaded(*session.Host().library);
        pthread_barrier_wait(&turn);
      }
    });
  const auto reload = [&](int times) {
    for (int i = 0; i < times && !HasFailure(); ++i) {
      ASSERT_NO_THROW(session.Reload(1));
      EXPECT_EQ(PrintLiteral(session.Evaluate(*ParseFormula("=MEMMATCH(\"b\",{\"a\";\"b\"})"))), "2");
      pthread_barrier_wait(&turn);
      CallLoaded(*session.Host().library);
      pthread_barrier_wait(&turn);
    }
    session.Finish();
  };
  reload(50);
  const std::int64_t blocks = AddinAllocations().LiveBlocks();
  const std::size_t bytes = CommittedBytes();
  const std::uintptr_t handle = NextHandle();
  reload(450);
  EXPECT_EQ(AddinAllocations().LiveBlocks(), blocks);
  // Handles are numbered in fours; a few may have been taken by the system meanwhile.
  EXPECT_LE(NextHandle(), handle + 10 * 4);
  // What the library takes before its allocations are watched: a kilobyte left by each load would be 460,800 bytes.
  EXPECT_LT(CommittedBytes(), bytes + 450 * 1'024);
  EXPECT_THAT(session.Host().complaints.Take(), IsEmpty());
  isOver = true;
  pthread_barrier_wait(&turn);
}

}  // namespace
}  // namespace qcalc
