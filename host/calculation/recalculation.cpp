#include "host/calculation/recalculation.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

#include "host/calculation/dependencies.h"
#include "host/calculation/formula_batch.h"
#include "host/calculation/result_writer.h"

namespace qcalc {

namespace {

// A spill that changes its size has its readers calculated again; formulas that chase each other's size never settle.
constexpr int kMostTimes = 100;

constexpr const char* kUnsettled = "it does not settle: the size of a spilled array depends on itself";

constexpr std::uint32_t kNone = ~std::uint32_t{0};

enum class State : std::uint8_t {
  kIdle,     // clean, or dirty and not met yet
  kQueued,   // to be looked at
  kInBatch,  // being evaluated
  kStale,    // likewise, by what it reads and has changed since
  kWaiting,  // for another formula
  kFailed,
};

// How far one formula is. Those that wait for one are a chain through `nextWaiter`.
struct Progress {
  State state = State::kIdle;
  bool isEvaluatedAnyway = false;  // whatever it names may be dirty: it may not read it
  bool hasMetDirt = false;         // it waits for what its evaluation met, not for what it names
  std::uint8_t timesCalculated = 0;
  std::uint32_t timesWaited = 0;
  std::uint32_t waitsFor = kNone;
  std::uint32_t firstWaiter = kNone;
  std::uint32_t nextWaiter = kNone;
};

// Looks at dirty formulas one by one. One that reads a dirty one waits for it; the others are evaluated in batches, and
// what waited for them is looked at again. When all that is left waits, it waits in circles.
class Calculation {
 public:
  Calculation(Workbooks& workbooks, const EvaluationContext& context, const CalculationSettings& settings)
      : dependencies_(workbooks, context),
        places_(dependencies_.Places()),
        progress_(places_.Size()),
        batch_(places_, context, settings.threads, settings.unknown),
        writer_(dependencies_),
        mostBytes_(settings.mostBytes) {}

  CalculationOutcome Run() {
    for (const std::size_t number : dependencies_.SpreadDirt()) Enqueue(number);
    do {
      while (FillBatch()) {
        batch_.Evaluate();
        for (std::size_t i = 0; i < batch_.Size(); ++i) Take(batch_.NumberAt(i), batch_.ResultAt(i));
      }
    } while (BreakCircle());
    for (const Progress& progress : progress_) outcome_.calculated += progress.timesCalculated > 0 ? 1 : 0;
    return std::move(outcome_);
  }

 private:
  SheetCell CellOf(std::size_t number) const { return {places_.At(number).sheet->Id(), places_.At(number).position}; }

  void Enqueue(std::size_t number) {
    progress_[number].state = State::kQueued;
    queue_.push_back(number);
  }

  // False when nothing can be evaluated now.
  bool FillBatch() {
    batch_.Clear();
    while (!queue_.empty() && !batch_.IsFull()) {
      const std::size_t number = queue_.front();
      queue_.pop_front();
      Progress& progress = progress_[number];
      if (progress.state != State::kQueued) continue;
      // What lies first and what lies last are asked for in turn: whichever way a long area is calculated, few look at
      // it again and again.
      const auto precedent = progress.isEvaluatedAnyway
                                 ? std::nullopt
                                 : dependencies_.FindDirtyPrecedent(number, progress.timesWaited % 2 == 0);
      if (precedent) {
        progress.hasMetDirt = false;
        Wait(number, *precedent);
        continue;
      }
      progress.state = State::kInBatch;
      batch_.Add(number, dependencies_.IsThreadSafe(number));
    }
    return batch_.Size() > 0;
  }

  void Wait(std::size_t number, std::size_t precedent) {
    if (progress_[precedent].state == State::kFailed) return FailAsDependent(number);
    Progress& progress = progress_[number];
    progress.state = State::kWaiting;
    ++progress.timesWaited;
    progress.waitsFor = static_cast<std::uint32_t>(precedent);
    progress.nextWaiter = std::exchange(progress_[precedent].firstWaiter, static_cast<std::uint32_t>(number));
    waited_.push_back(number);
  }

  void Take(std::size_t number, FormulaBatch::Result& result) {
    if (progress_[number].state == State::kStale || std::holds_alternative<FormulaBatch::NotReached>(result))
      return Enqueue(number);
    if (const auto* met = std::get_if<UncalculatedCell>(&result)) return TakeUncalculated(number, *met);
    if (const auto* failure = std::get_if<FormulaBatch::Failure>(&result)) return Fail(number, failure->reason);
    progress_[number].state = State::kIdle;
    if (++progress_[number].timesCalculated > kMostTimes) return Fail(number, kUnsettled);
    const Value& value = std::get<Value>(result);
    const std::size_t bytes = BytesOf(value);
    if (bytesHeld_ + bytes > mostBytes_) return Fail(number, "its result no longer fits into memory");
    bytesHeld_ += bytes;
    for (const std::size_t reader : writer_.Write(number, value)) Soiled(reader);
    result = FormulaBatch::NotReached{};
    ReleaseWaiters(number);
  }

  void TakeUncalculated(std::size_t number, const UncalculatedCell& met) {
    const auto writer = places_.WriterOf(met.sheet, met.position);
    if (!writer) return Fail(number, "it read a cell that is not calculated and holds no formula");
    // It may have been calculated in the same batch.
    if (!places_.At(*writer).IsDirty()) return Enqueue(number);
    progress_[number].hasMetDirt = true;
    Wait(number, *writer);
  }

  // What it read has changed.
  void Soiled(std::size_t number) {
    State& state = progress_[number].state;
    if (state == State::kIdle) Enqueue(number);
    if (state == State::kInBatch) state = State::kStale;
  }

  std::vector<std::size_t> TakeWaiters(std::size_t number) {
    std::vector<std::size_t> waiters;
    for (std::uint32_t next = std::exchange(progress_[number].firstWaiter, kNone); next != kNone;
         next = progress_[next].nextWaiter)
      waiters.push_back(next);
    std::reverse(waiters.begin(), waiters.end());
    return waiters;
  }

  void ReleaseWaiters(std::size_t number) {
    for (const std::size_t waiter : TakeWaiters(number)) Enqueue(waiter);
  }

  void Fail(std::size_t number, std::string reason) {
    outcome_.failures.push_back({{CellOf(number)}, std::move(reason)});
    Give({number});
  }

  void FailAsDependent(std::size_t number) {
    outcome_.dependents.push_back(CellOf(number));
    Give({number});
  }

  // These cannot be calculated, nor can what waits for them.
  void Give(std::vector<std::size_t> numbers) {
    for (const std::size_t number : numbers) Settle(number);
    for (std::size_t next = 0; next < numbers.size(); ++next)
      for (const std::size_t waiter : TakeWaiters(numbers[next])) {
        if (progress_[waiter].state == State::kFailed) continue;
        outcome_.dependents.push_back(CellOf(waiter));
        Settle(waiter);
        numbers.push_back(waiter);
      }
  }

  // It is not calculated, and nothing that reads it may be.
  void Settle(std::size_t number) {
    progress_[number].state = State::kFailed;
    progress_[number].timesCalculated = 0;
    places_.At(number).sheet->MarkDirty(places_.At(number).position, true);
  }

  // Where all that is left waits: a circle of formulas that wait for each other. Those that do so because they name
  // each other are evaluated all the same, once: what they name they may not read. A circle of formulas that read each
  // other fails. False when nothing waits.
  bool BreakCircle() {
    while (!waited_.empty() && progress_[waited_.back()].state != State::kWaiting) waited_.pop_back();
    if (waited_.empty()) return false;
    const std::vector<std::size_t> circle = CircleFrom(waited_.back());
    bool isAnyEvaluated = false;
    for (const std::size_t number : circle)
      if (!progress_[number].hasMetDirt) {
        isAnyEvaluated = true;
        progress_[number].isEvaluatedAnyway = true;
        StopWaiting(number);
        Enqueue(number);
      }
    if (isAnyEvaluated) return true;
    CalculationFailure failure;
    for (const std::size_t number : circle) failure.cells.push_back(CellOf(number));
    outcome_.failures.push_back(std::move(failure));
    Give(circle);
    return true;
  }

  // From its first cell on, whichever was met first.
  std::vector<std::size_t> CircleFrom(std::size_t number) {
    std::vector<std::size_t> path;
    ++walks_;
    walkOf_.resize(places_.Size());
    for (; walkOf_[number] != walks_; number = progress_[number].waitsFor) {
      walkOf_[number] = walks_;
      path.push_back(number);
    }
    path.erase(path.begin(), std::find(path.begin(), path.end(), number));
    std::rotate(path.begin(), std::min_element(path.begin(), path.end()), path.end());
    return path;
  }

  void StopWaiting(std::size_t number) {
    std::uint32_t* link = &progress_[progress_[number].waitsFor].firstWaiter;
    while (*link != number) link = &progress_[*link].nextWaiter;
    *link = progress_[number].nextWaiter;
  }

  Dependencies dependencies_;
  const FormulaPlaces& places_;
  std::vector<Progress> progress_;
  FormulaBatch batch_;
  ResultWriter writer_;
  const std::size_t mostBytes_;
  std::size_t bytesHeld_ = 0;  // by what results are beyond numbers and the like
  std::deque<std::size_t> queue_;
  std::vector<std::size_t> waited_;  // all that wait, and some that no longer do
  std::vector<std::uint32_t> walkOf_;
  std::uint32_t walks_ = 0;
  CalculationOutcome outcome_;
};

}  // namespace

CalculationOutcome Recalculate(Workbooks& workbooks, const EvaluationContext& context,
                               const CalculationSettings& settings) {
  return Calculation(workbooks, context, settings).Run();
}

std::string Describe(const CalculationFailure& failure, const Workbooks& workbooks) {
  const auto nameOf = [&](const SheetCell& cell) {
    return ReferenceToText({cell.sheet, {Area::OfCell(cell.position.row, cell.position.column)}}, workbooks);
  };
  if (!failure.reason.empty()) return nameOf(failure.cells[0]) + ": " + failure.reason;
  std::string circle = "circular reference: ";
  for (const SheetCell& cell : failure.cells) circle += nameOf(cell) + " -> ";
  return circle + nameOf(failure.cells[0]);
}

}  // namespace qcalc
