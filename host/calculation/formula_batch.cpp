#include "host/calculation/formula_batch.h"

#include <algorithm>
#include <chrono>

#include "host/calculation/evaluator.h"

namespace qcalc {

namespace {

// Results are not held at once beyond so much, but for one.
constexpr std::size_t kMostBytesHeld = std::size_t{1} << 28;

// Waking threads and waiting for them takes some microseconds of each.
constexpr double kSecondsWorthThreads = 100e-6;

// So many at a time are taken from the list that all threads share.
constexpr std::size_t kGrain = 8;

}  // namespace

std::size_t BytesOf(const Value& value) {
  if (value.IsText()) return value.AsText().size() * sizeof(XCHAR);
  if (!value.IsArray()) return 0;
  std::size_t bytes = 0;
  for (const CellView& cell : value.AsArray()->Cells())
    bytes += sizeof(CellView) + (cell.IsText() ? cell.AsText().size() * sizeof(XCHAR) : 0);
  return bytes;
}

void FormulaBatch::Clear() {
  numbers_.clear();
  onAnyThread_.clear();
  onMainThread_.clear();
  results_.clear();
}

void FormulaBatch::Add(std::size_t number, bool anyThread) {
  (anyThread ? onAnyThread_ : onMainThread_).push_back(numbers_.size());
  numbers_.push_back(number);
}

bool FormulaBatch::IsWorthThreads() const {
  if (!threads_ || threads_->Count() < 2 || numbers_.size() < 2 || onAnyThread_.empty()) return false;
  const double each = evaluated_ > 0 ? secondsSpent_ / static_cast<double>(evaluated_) : kSecondsWorthThreads;
  return each * static_cast<double>(onAnyThread_.size()) >= kSecondsWorthThreads;
}

void FormulaBatch::Evaluate() {
  using Clock = std::chrono::steady_clock;
  results_.resize(numbers_.size());
  bytesHeld_ = 0;
  std::atomic<std::size_t> nextOnMain{0}, nextOnAny{0};
  std::atomic<std::int64_t> nanoseconds{0};
  const auto work = [&](int thread) {
    const auto start = Clock::now();
    EvaluationContext context = context_;
    // The main thread begins with what nobody else may do.
    if (thread == 0) EvaluateAll(onMainThread_, nextOnMain, context);
    EvaluateAll(onAnyThread_, nextOnAny, context);
    nanoseconds += std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start).count();
  };
  if (IsWorthThreads())
    threads_->Run(work);
  else
    work(0);
  evaluated_ += static_cast<std::int64_t>(numbers_.size());
  secondsSpent_ += static_cast<double>(nanoseconds) * 1e-9;
}

void FormulaBatch::EvaluateAll(const std::vector<std::size_t>& indexes, std::atomic<std::size_t>& next,
                               EvaluationContext& context) {
  // One result is always taken, however large.
  for (std::size_t from = next.fetch_add(kGrain); from < indexes.size(); from = next.fetch_add(kGrain))
    for (std::size_t i = from; i < std::min(from + kGrain, indexes.size()); ++i) {
      if (bytesHeld_.load(std::memory_order_relaxed) > kMostBytesHeld) continue;
      Result& result = results_[indexes[i]];
      result = EvaluateOne(numbers_[indexes[i]], context);
      if (const auto* value = std::get_if<Value>(&result))
        if (const std::size_t bytes = BytesOf(*value)) bytesHeld_ += bytes;
    }
}

FormulaBatch::Result FormulaBatch::EvaluateOne(std::size_t number, EvaluationContext& context) {
  const FormulaPlace& place = places_.At(number);
  context.sheet = place.sheet;
  context.caller.sheet = place.sheet->Id();
  context.caller.areas.assign(1, place.cell->form == FormulaForm::kArray ? place.Filled().area : place.OwnCell());
  context.askedVolatile = &place.cell->askedVolatile;
  context.form = place.cell->form;
  try {
    const Value result = qcalc::Evaluate(place.cell->formula, context, unknown_);
    if (result.IsReference()) CheckCalculated(result.AsReference(), *context.workbooks);
    return Dereference(result, *context.workbooks);
  } catch (const UncalculatedCell& met) {
    return met;
  } catch (const FormulaError& error) {
    return Failure{error.what()};
  } catch (const std::length_error& error) {
    return Failure{error.what()};
  }
}

}  // namespace qcalc
