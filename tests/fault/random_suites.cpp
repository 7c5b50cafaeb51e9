#include <chrono>
#include <mutex>
#include <random>
#include <utility>

#include "findings.h"
#include "host/addin/evaluation_watch.h"

namespace qcalc::fault {
namespace {

using Random = std::mt19937_64;

// One draw in so many goes wrong in each way.
constexpr unsigned kDamaged = 3;
constexpr unsigned kFailingCallback = 4;
constexpr unsigned kFailingAllocation = 4;
constexpr std::uint64_t kMostAllocations = 60;

/// The source of all that one draw decides, whatever was drawn before it.
Random SourceOf(const SuiteSettings& settings, std::uint64_t number, std::uint64_t thread = 0) {
  std::seed_seq seeds{settings.seed, settings.seed >> 32, number, number >> 32, thread};
  return Random(seeds);
}

bool OneIn(unsigned count, Random& random) { return random() % count == 0; }

template <typename Container>
const auto& OneOf(const Container& container, Random& random) {
  return container[random() % std::size(container)];
}

Trial DrawCall(const TrialRunner& runner, Random& random) {
  const RegisteredFunction& function = *OneOf(runner.Functions(), random);
  Trial trial{&function, runner.Values().PlainOperands(function, OneOf(kPlainCalls, random)), {}};
  bool hasLarge = false;
  for (std::size_t i = 0; i < trial.operands.size(); ++i) {
    if (!OneIn(4, random)) continue;
    const NamedValue& drawn = OneOf(runner.Values().KindsFor(function, i), random);
    if (drawn.isLarge && std::exchange(hasLarge, true)) continue;
    trial.operands[i] = drawn;
  }
  return trial;
}

ArgumentFault DrawDamage(std::size_t arguments, Random& random) {
  for (;;) {
    ArgumentFault damage{
        .argument = 1 + static_cast<int>(random() % arguments),
        .kind = static_cast<ArgumentFaultKind>(random() % (static_cast<unsigned>(ArgumentFaultKind::kNested) + 1)),
        .number = static_cast<std::int64_t>(random() & 0xFFFF)};
    if (damage.kind == ArgumentFaultKind::kBits) damage.number &= xlbitXLFree | xlbitDLLFree;
    const auto side = [&] {
      return static_cast<std::int32_t>(random() >> (33 + random() % 31)) * (OneIn(8, random) ? -1 : 1);
    };
    damage.rows = side();
    damage.columns = side();
    if (WhyNotOffered(damage).empty()) return damage;
  }
}

CallbackFault DrawCallback(const TrialRunner& runner, Random& random) {
  CallbackFault fault{OneOf(runner.UsualCallbacks(), random), static_cast<int>(random() % 4), xlretFailed};
  if (OneIn(2, random))
    fault.answer = static_cast<AnswerKind>(random() % (static_cast<unsigned>(AnswerKind::kHandle) + 1));
  else
    fault.answer = static_cast<int>(1u << (random() % 8));
  return fault;
}

Faults DrawFaults(const TrialRunner& runner, std::size_t arguments, Random& random) {
  Faults faults;
  if (arguments > 0 && OneIn(kDamaged, random)) faults.damage = DrawDamage(arguments, random);
  if (!runner.UsualCallbacks().empty() && OneIn(kFailingCallback, random))
    faults.callback = DrawCallback(runner, random);
  if (OneIn(kFailingAllocation, random))
    faults.allocation = AllocationFault{static_cast<std::int64_t>(1 + random() % kMostAllocations),
                                        OneIn(2, random) ? AllocationFailure::kOnce : AllocationFailure::kFromThenOn};
  return faults;
}

/// Counts numbers up until the settings say that it is enough.
class RandomTest : public testing::Test {
 public:
  RandomTest(TrialRunner& runner, const SuiteSettings& settings)
      : runner_(runner), settings_(settings), findings_(settings) {}

 protected:
  /// Calls `attempt` with one number after the other until it says that enough was told.
  template <typename Attempt>
  void ForEach(std::uint64_t count, Attempt&& attempt) {
    if (settings_.only) {
      attempt(*settings_.only);
      return;
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(settings_.seconds);
    const auto goesOn = [&](std::uint64_t number) {
      return settings_.seconds > 0 ? std::chrono::steady_clock::now() < end : number < count;
    };
    std::uint64_t number = 0;
    while (goesOn(number) && attempt(number)) ++number;
    RecordProperty("draws", std::to_string(number));
  }

  TrialRunner& runner_;
  const SuiteSettings& settings_;
  Findings findings_;
};

class OneThread : public RandomTest {
 public:
  using RandomTest::RandomTest;
  void TestBody() override {
    ForEach(settings_.draws, [&](std::uint64_t number) {
      Random random = SourceOf(settings_, number);
      Trial trial = DrawCall(runner_, random);
      trial.faults = DrawFaults(runner_, trial.operands.size(), random);
      return findings_.Try(runner_, trial, number);
    });
  }
};

/// Rounds of calls on all threads at once. What goes wrong in a round goes wrong on all of them; a plain round follows.
class AllThreads : public RandomTest {
 public:
  using RandomTest::RandomTest;
  void TestBody() override {
    // What each thread leaves behind once, when it comes to be known, is left behind now.
    PlainRound();
    ForEach(settings_.rounds, [&](std::uint64_t number) { return TryRound(number); });
  }

 private:
  static constexpr int kCallsOfThread = 12;
  static constexpr int kRepetitions = 3;
  static constexpr int kThreads = 8;

  bool TryRound(std::uint64_t number) {
    const std::int64_t before = AddinAllocations().LiveBlocks();
    DamagedRound(number);
    std::string wrong = TakeWrong();
    std::int64_t live = AddinAllocations().LiveBlocks();
    bool isLosing = live > before;
    for (int i = 0; i < kRepetitions && isLosing && wrong.empty(); ++i) {
      DamagedRound(number);
      wrong = TakeWrong();
      isLosing = AddinAllocations().LiveBlocks() > live;
      live = AddinAllocations().LiveBlocks();
    }
    if (wrong.empty() && isLosing) wrong = "every such round leaves blocks behind, now " + std::to_string(live);
    PlainRound();
    if (wrong.empty()) wrong = TakeWrong();
    return findings_.Tell(findings_.NameOf(number, "a round" + FaultsOf(number).Describe()), wrong);
  }

  Faults FaultsOf(std::uint64_t number) const {
    Random random = SourceOf(settings_, number);
    constexpr std::size_t kFirstArguments = 4;
    return DrawFaults(runner_, kFirstArguments, random);
  }

  void DamagedRound(std::uint64_t number) {
    const Faults faults = FaultsOf(number);
    faults.Arm(runner_.Host());
    const EvaluationWatch watch(runner_.Host());
    runner_.Host().mainThread.RunOnThreads(kThreads, [&](int thread) {
      Random random = SourceOf(settings_, number, static_cast<std::uint64_t>(thread) + 1);
      for (int i = 0; i < kCallsOfThread; ++i) {
        Trial trial = DrawCall(runner_, random);
        trial.faults = faults;
        const std::string name = findings_.NameOf(number, trial.Describe());
        const CallNote note(name);
        Note(name, runner_.CheckCall(trial));
      }
    });
  }

  void PlainRound() {
    runner_.Host().mainThread.RunOnThreads(kThreads, [&](int thread) {
      const auto& functions = runner_.Functions();
      const std::size_t at = (plainRounds_ + static_cast<std::size_t>(thread)) % functions.size();
      Note("a plain round", runner_.CheckPlainCall(*functions[at]));
    });
    ++plainRounds_;
  }

  void Note(const std::string& name, const std::string& wrong) {
    if (wrong.empty()) return;
    const std::lock_guard lock(mutex_);
    wrong_ += name + ": " + wrong + "\n  ";
  }

  std::string TakeWrong() {
    std::string wrong = std::exchange(wrong_, {});
    return wrong + runner_.CheckBooks();
  }

  std::mutex mutex_;
  std::string wrong_;
  std::size_t plainRounds_ = 0;
};

}  // namespace

void RegisterRandomSuites(TrialRunner& runner, const SuiteSettings& settings) {
  Register<OneThread>("Random", "OneThread", runner, settings);
  Register<AllThreads>("Random", "AllThreads", runner, settings);
}

}  // namespace qcalc::fault
