// The frame's fault guard, shown on a library that provokes the faults.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
#include <xmmintrin.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "host/calculation/evaluator.h"
#include "host/library/allocation.h"
#include "host/scripts/session.h"
#include "host/values/literal.h"

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

class FaultGuard : public ::testing::Test {
 protected:
  std::string Evaluate(const std::string& text) {
    const auto formula = ParseFormula(text);
    return PrintLiteral(session.Contents(session.Evaluate(*formula)));
  }

  Session session{ProgramFolder() / "faulting.xll"};
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
    EXPECT_EQ(Evaluate("=STORE.IS.FREE()"), "TRUE") << "after " << kind.name;
  }
  session.Finish();
  EXPECT_THAT(session.Host().complaints.Take(), IsEmpty());
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
  const EvaluationContext context = session.Prepare(*formulas[0]);
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
  std::vector<const Kind*> unwinding, escaping;
  for (const Kind& kind : kKinds)
    if (kind.results[0] != kStackOverflow) (kind.lostBlocks == 0 ? unwinding : escaping).push_back(&kind);
  EXPECT_EQ(CallOnEightThreads(session, unwinding, 500), 0);
  const std::size_t before = CommittedBytes();
  EXPECT_EQ(CallOnEightThreads(session, unwinding, 14'000), 0);
  // Above 100,000 faults: a block of 64 bytes left by each would be 6 MB. What was lent takes a part of one meanwhile.
  EXPECT_LT(CommittedBytes(), before + (3u << 20));
  EXPECT_EQ(CallOnEightThreads(session, escaping, 500), 0);
  EXPECT_EQ(Evaluate(Call("nothing")), "7");
}

TEST_F(FaultGuard, StacksOverflowAHundredTimesAndOtherThreadsDoNotNotice) {
  const auto overflow = ParseFormula(Call("overflow"));
  const auto large = ParseFormula(Call("large overflow"));
  const auto plain = ParseFormula(Call("nothing"));
  const EvaluationContext context = session.Prepare(*plain);
  std::atomic<int> overflows{0};
  std::atomic<int> wrong{0};
  std::atomic<bool> isOver{false};
  session.Host().mainThread.RunOnThreads(3, [&](int thread) {
    if (thread != 1) {
      while (!isOver)
        if (PrintLiteral(qcalc::Evaluate(*plain, context)) != "7") ++wrong;
      return;
    }
    for (int i = 0; i < 100; ++i)
      if (PrintLiteral(qcalc::Evaluate(i % 2 ? *overflow : *large, context)) == kStackOverflow) ++overflows;
    isOver = true;
  });
  EXPECT_EQ(overflows, 100);
  EXPECT_EQ(wrong, 0);
}

TEST_F(FaultGuard, TheFloatEnvironmentIsTheDefaultInsideAndTheHostsAgainOutside) {
  Evaluate(Call("nothing"));
  const unsigned int before = _mm_getcsr();
  constexpr unsigned int kDivideByZeroMask = 0x0200;
  _mm_setcsr((before & ~kDivideByZeroMask) | _MM_ROUND_UP);
  const unsigned int unmasked = _mm_getcsr();
  const std::string result = Evaluate("=DIVIDE.BY.ZERO()");
  const unsigned int after = _mm_getcsr();
  _mm_setcsr(before);
  EXPECT_EQ(result, "TRUE");
  EXPECT_EQ(after, unmasked);
}

/// Threads that live on while libraries come and go; each does what it is told, all at the same time.
class LivingThreads {
 public:
  explicit LivingThreads(int count) {
    for (int i = 0; i < count; ++i) threads_.emplace_back([this] { Serve(); });
  }
  LivingThreads(const LivingThreads&) = delete;
  LivingThreads& operator=(const LivingThreads&) = delete;
  ~LivingThreads() {
    RunOnAll(nullptr);
    for (std::thread& thread : threads_) thread.join();
  }

  /// Returns when all have done `work`; no work ends them.
  void RunOnAll(const std::function<void()>* work) {
    std::unique_lock lock(mutex_);
    work_ = work;
    busy_ = threads_.size();
    ++round_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return busy_ == 0; });
  }

 private:
  void Serve() {
    std::unique_lock lock(mutex_);
    for (int seen = 0;;) {
      changed_.wait(lock, [&] { return round_ != seen; });
      seen = round_;
      const std::function<void()>* const work = work_;
      lock.unlock();
      if (work) (*work)();
      lock.lock();
      --busy_;
      changed_.notify_all();
      if (!work) return;
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<void()>* work_ = nullptr;
  std::size_t busy_ = 0;
  int round_ = 0;
  std::vector<std::thread> threads_;
};

/// The lowest handle that is free: handles that are lost push it up.
std::uintptr_t NextHandle() {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(event);
  return reinterpret_cast<std::uintptr_t>(event);
}

/// Loads and opens the add-in, has it fault, remember and answer on all threads, and leaves it open.
void ReloadAndCall(Session& session, LivingThreads& threads) {
  session.Reload(1);
  const auto formula = ParseFormula("=MEMMATCH(\"b\",{\"a\";\"b\"})");
  EXPECT_EQ(PrintLiteral(session.Evaluate(*formula)), "2");
  const Library& library = *session.Host().library;
  const auto put = library.FindAs<XLOPER12* (*)(XLOPER12*)>("Put_RowIDString_12");
  const auto get = library.FindAs<XLOPER12* (*)()>("Get_RowIdString_12");
  const auto free = library.FindAs<void (*)(XLOPER12*)>("xlAutoFree12");
  std::atomic<int> wrong{0};
  const std::function<void()> calls = [&] {
    XCHAR units[] = L"\4text";
    XLOPER12 text{}, number{}, pair{}, wild{};
    text.val.str = units;
    text.xltype = wild.xltype = xltypeStr;
    wild.val.str = reinterpret_cast<XCHAR*>(8);
    number.xltype = xltypeNum;
    XLOPER12 cells[] = {text, number};
    pair.val.array = {cells, 1, 2};
    pair.xltype = xltypeMulti;
    if (put(&wild)->xltype != (xltypeStr | xlbitDLLFree)) ++wrong;
    if (put(&pair)->xltype != xltypeNum) ++wrong;
    XLOPER12* const entries = get();
    if (entries->val.array.rows != 2) ++wrong;
    free(entries);
    // The last result stays with the thread, text and all.
    put(&wild);
  };
  threads.RunOnAll(&calls);
  calls();
  EXPECT_EQ(wrong, 0);
}

TEST(Reloading, FiveHundredTimesUnderLivingThreadsLeavesNothingBehind) {
  LivingThreads threads(3);
  AddinAllocations().TrackBlocks();
  Session session(ProgramFolder() / "Quillmere4.xll");
  for (int i = 0; i < 50; ++i) ReloadAndCall(session, threads);
  session.Finish();
  const std::int64_t blocks = AddinAllocations().LiveBlocks();
  const std::size_t bytes = CommittedBytes();
  const std::uintptr_t handle = NextHandle();
  for (int i = 50; i < 500 && !HasFailure(); ++i) ReloadAndCall(session, threads);
  session.Finish();
  EXPECT_EQ(AddinAllocations().LiveBlocks(), blocks);
  // Handles are numbered in fours; a few may have been taken by the system meanwhile.
  EXPECT_LE(NextHandle(), handle + 10 * 4);
  // What the library takes before its allocations are watched: a kilobyte left by each load would be 460,800 bytes.
  EXPECT_LT(CommittedBytes(), bytes + 450 * 1'024);
  EXPECT_THAT(session.Host().complaints.Take(), IsEmpty());
}

}  // namespace
}  // namespace qcalc
