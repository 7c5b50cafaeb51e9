#include <random>

#include "findings.h"
#include "host/text/utf8.h"

namespace qcalc::fault {
namespace {

constexpr std::size_t kNoArgument = static_cast<std::size_t>(-1);
constexpr int kReturnCodes[] = {xlretAbort,         xlretInvXlfn,       xlretInvCount,
                                xlretInvXloper,     xlretStackOvfl,     xlretFailed,
                                xlretUncalced,      xlretNotThreadSafe, xlretInvAsynchronousContext,
                                xlretNotClusterSafe};
constexpr AnswerKind kAnswerKinds[] = {AnswerKind::kNumber,  AnswerKind::kText,    AnswerKind::kBoolean,
                                       AnswerKind::kError,   AnswerKind::kArray,   AnswerKind::kReference,
                                       AnswerKind::kSheet,   AnswerKind::kMissing, AnswerKind::kEmpty,
                                       AnswerKind::kInteger, AnswerKind::kHandle};

/// A plain call with one argument exchanged, or with none.
struct Combination {
  PlainCall plain;
  std::size_t argument = kNoArgument;
  std::size_t kind = 0;
};

/// At most `most` of the numbers below `total`, one drawn from each of as many even stretches.
std::vector<std::uint64_t> Spread(std::uint64_t total, std::uint64_t most, std::uint64_t seed) {
  std::vector<std::uint64_t> numbers;
  std::mt19937_64 random(seed);
  const std::uint64_t count = std::min(total, most);
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t first = i * total / count, end = (i + 1) * total / count;
    numbers.push_back(first + random() % (end - first));
  }
  return numbers;
}

/// What the tests of one function share.
class FunctionTest : public testing::Test {
 public:
  FunctionTest(TrialRunner& runner, const SuiteSettings& settings, const RegisteredFunction& function)
      : runner_(runner), settings_(settings), function_(function), findings_(settings) {
    for (const PlainCall plain : kPlainCalls) {
      combinations_.push_back({plain});
      for (std::size_t argument = 0; argument < function.operands.size(); ++argument)
        for (std::size_t kind = 0; kind < runner.Values().KindsFor(function, argument).size(); ++kind)
          combinations_.push_back({plain, argument, kind});
    }
  }

 protected:
  std::uint64_t Share() const { return std::max<std::uint64_t>(1, settings_.trials / runner_.Functions().size()); }

  Trial TrialOf(const Combination& combination) const {
    Trial trial{&function_, runner_.Values().PlainOperands(function_, combination.plain), {}};
    if (combination.argument != kNoArgument)
      trial.operands[combination.argument] =
          runner_.Values().KindsFor(function_, combination.argument)[combination.kind];
    return trial;
  }

  /// The plain calls, then `most` of all combinations that are wanted, with their numbers.
  std::vector<std::pair<std::uint64_t, Trial>> Trials(std::uint64_t most) const {
    std::vector<std::pair<std::uint64_t, Trial>> trials;
    if (settings_.only) {
      if (*settings_.only < combinations_.size())
        trials.emplace_back(*settings_.only, TrialOf(combinations_[*settings_.only]));
      return trials;
    }
    const auto add = [&](std::uint64_t number) { trials.emplace_back(number, TrialOf(combinations_[number])); };
    for (std::uint64_t number = 0; number < combinations_.size(); ++number)
      if (combinations_[number].argument == kNoArgument) add(number);
    for (const std::uint64_t number : Spread(combinations_.size(), most, settings_.seed)) add(number);
    return trials;
  }

  bool IsPlain(std::uint64_t number) const { return combinations_[number].argument == kNoArgument; }

  /// Calls `attempt` with the trial after it was observed with the stores empty, and once more as it is when what it
  /// stored is found, if it then goes another way. False when enough has been told.
  template <typename Attempt>
  bool InBothStates(std::uint64_t number, Trial trial, Attempt&& attempt) {
    std::pair<std::vector<std::pair<const XlCallback*, int>>, std::int64_t> before;
    for (const bool forgets : {true, false}) {
      trial.forgets = forgets;
      const CallNote note(findings_.NameOf(number, trial.Describe()));
      const Value answer = runner_.Observe(trial);
      if (!function_.IsHidden()) trial.answer = answer;
      const std::pair way(runner_.CallbacksMade(), AddinAllocations().Count());
      if (way == std::exchange(before, way)) return true;
      if (!attempt(trial)) return false;
    }
    return true;
  }

  TrialRunner& runner_;
  const SuiteSettings& settings_;
  const RegisteredFunction& function_;
  Findings findings_;
  std::vector<Combination> combinations_;
};

class Values : public FunctionTest {
 public:
  using FunctionTest::FunctionTest;
  void TestBody() override {
    for (const auto& [number, trial] : Trials(Share()))
      if (!findings_.Try(runner_, trial, number)) return;
  }
};

/// All kinds of damage that this build offers.
std::vector<ArgumentFault> AllDamage() {
  std::vector<ArgumentFault> all = {
      {.kind = ArgumentFaultKind::kNull}, {.kind = ArgumentFaultKind::kNested}, {.kind = ArgumentFaultKind::kPointer}};
  // Every type of one bit, none, and several at once; the bits above them.
  for (const int type : {0x0000, 0x0001, 0x0002, 0x0004, 0x0008, 0x0010, 0x0020, 0x0040, 0x0080, 0x0100, 0x0200, 0x0400,
                         0x0800, 0x0802, 0x0202, 0x0003, 0x0048, 0x0FFF, 0x1001, 0x2000, 0x4002, 0x8000, 0xFFFF})
    all.push_back({.kind = ArgumentFaultKind::kType, .number = type});
  // Each free bit, both, and others that mean nothing.
  for (const int bits : {0x1000, 0x4000, 0x5000, 0xA000})
    all.push_back({.kind = ArgumentFaultKind::kBits, .number = bits});
  for (const int length : {0, 1, 255, 256, 32'767, 32'768, 65'535})
    all.push_back({.kind = ArgumentFaultKind::kLength, .number = length});
  constexpr std::pair<int, int> kDims[] = {{0, 0},
                                           {1, 0},
                                           {1'048'576, 1},
                                           {1'048'577, 1},
                                           {1, 16'384},
                                           {1, 16'385},
                                           {100, 100},
                                           {1'048'576, 16'384},
                                           {65'536, 65'536},
                                           {-1, 3},
                                           {3, -1},
                                           {-1, -1},
                                           {2'147'483'647, 2'147'483'647}};
  for (const auto& [rows, columns] : kDims)
    all.push_back({.kind = ArgumentFaultKind::kDims, .rows = rows, .columns = columns});
  std::erase_if(all, [](const ArgumentFault& damage) { return !WhyNotOffered(damage).empty(); });
  return all;
}

/// Each argument with each damage, done to one kind of value after the other.
class Damage : public FunctionTest {
 public:
  using FunctionTest::FunctionTest;
  void TestBody() override {
    const std::vector<ArgumentFault> all = AllDamage();
    const std::size_t arguments = function_.operands.size();
    const std::int64_t before = runner_.CallsMade();
    for (const std::uint64_t number : Numbers(arguments * all.size() * kRounds)) {
      const std::size_t argument = number / all.size() % arguments;
      Trial trial = TrialOf(CombinationFor(number, argument));
      trial.faults.damage = all[number % all.size()];
      trial.faults.damage->argument = static_cast<int>(argument) + 1;
      if (!findings_.Try(runner_, trial, number)) return;
    }
    EXPECT_TRUE(arguments == 0 || settings_.only || runner_.CallsMade() > before) << "no damage could be done";
  }

 private:
  // Each argument and damage with so many different values.
  static constexpr std::uint64_t kRounds = 4;

  std::vector<std::uint64_t> Numbers(std::uint64_t total) const {
    return settings_.only ? std::vector{*settings_.only} : Spread(total, 2 * Share(), settings_.seed);
  }

  /// What the damage is done to follows from the trial's number: damage to texts and arrays needs such.
  Combination CombinationFor(std::uint64_t number, std::size_t argument) const {
    std::mt19937_64 random(number);
    const std::span<const NamedValue> kinds = runner_.Values().KindsFor(function_, argument);
    const std::size_t kind = random() % kinds.size();
    return {kPlainCalls[random() % kPlainCalls.size()], argument, kind};
  }
};

/// Each callback that a call makes fails, and is answered oddly, in turn: all those of the plain calls, and of others
/// as many as the function's share is.
class Callbacks : public FunctionTest {
 public:
  using FunctionTest::FunctionTest;
  void TestBody() override {
    std::uint64_t left = Share();
    for (const auto& [number, trial] : Trials(std::max<std::uint64_t>(Share() / 8, kPlainCalls.size())))
      if (!InBothStates(number, trial, [&, at = number](const Trial& each) { return FailEach(at, each, left); }))
        return;
    EXPECT_EQ(runner_.CheckBooks(), "");
  }

 private:
  static constexpr int kMostInTurn = 6;

  bool FailEach(std::uint64_t number, Trial trial, std::uint64_t& left) {
    const std::optional<Value> answer = trial.answer;
    const auto attempt = [&](const XlCallback& callback, int nth, std::variant<int, AnswerKind> with) {
      if (!IsPlain(number) && left == 0) return true;
      if (!IsPlain(number)) --left;
      trial.faults.callback = CallbackFault{&callback, nth, with};
      // An odd answer may be taken for a right one.
      trial.answer = std::holds_alternative<int>(with) ? answer : std::nullopt;
      // A text that VALUE fails on stays one, as if VALUE had refused it.
      if (trial.answer && callback.number == xlfValue) trial.answer = WhenRefused(trial);
      return findings_.Try(runner_, trial, number);
    };
    for (const auto& [callback, calls] : runner_.CallbacksMade())
      for (int nth = 1; nth <= std::min(calls, kMostInTurn); ++nth) {
        for (const int code : kReturnCodes)
          if (!attempt(*callback, nth, code)) return false;
        for (const AnswerKind kind : kAnswerKinds)
          if (!attempt(*callback, nth, kind)) return false;
      }
    return true;
  }

  /// What the call gives when its callback answers with an error value.
  Value WhenRefused(Trial trial) {
    trial.faults.callback->answer = AnswerKind::kError;
    return runner_.Observe(trial);
  }
};

/// Each allocation that a call makes fails in turn, once and from then on, until the call gets by without it: the first
/// of each plain call, and of others as many as the function's share is.
class Allocations : public FunctionTest {
 public:
  using FunctionTest::FunctionTest;
  void TestBody() override {
    std::int64_t left = static_cast<std::int64_t>(2 * Share());
    for (const auto& [number, trial] : Trials(std::max<std::uint64_t>(Share() / 10, kPlainCalls.size()))) {
      if (left < 0 && !IsPlain(number)) break;
      if (!InBothStates(number, trial, [&, at = number](const Trial& each) { return FailEach(at, each, left); }))
        return;
    }
    // A hidden function that meets what it stored before need take no memory.
    EXPECT_TRUE(failed_ > 0 || settings_.only || function_.IsHidden()) << "no call allocated anything";
  }

 private:
  static constexpr std::int64_t kMostInTurn = 64;

  bool FailEach(std::uint64_t number, Trial trial, std::int64_t& left) {
    for (const AllocationFailure failure : {AllocationFailure::kOnce, AllocationFailure::kFromThenOn})
      for (std::int64_t nth = 1; nth <= kMostInTurn; ++nth) {
        trial.faults.allocation = AllocationFault{nth, failure};
        if (!findings_.Try(runner_, trial, number)) return false;
        if (AddinAllocations().Failed() == 0) break;
        ++failed_;
        --left;
      }
    return true;
  }

  std::int64_t failed_ = 0;
};

}  // namespace

void RegisterFunctionSuites(TrialRunner& runner, const SuiteSettings& settings) {
  for (const RegisteredFunction* function : runner.Functions()) {
    const std::string name = ToUtf8(function->name);
    Register<Values>(name, "Values", runner, settings, *function);
    Register<Damage>(name, "Damage", runner, settings, *function);
    Register<Callbacks>(name, "Callbacks", runner, settings, *function);
    Register<Allocations>(name, "Allocations", runner, settings, *function);
  }
}

}  // namespace qcalc::fault
