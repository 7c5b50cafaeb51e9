// Formulas that wait for nothing, evaluated beside each other.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/calculation/calculation_threads.h"
#include "host/calculation/evaluation_context.h"
#include "host/calculation/formula_places.h"
#include "host/calculation/unknown_names.h"

namespace qcalc {

/// What the value takes beside itself: a text its units, an array its cells and their texts.
std::size_t BytesOf(const Value& value);

/// Nothing is written while a batch is evaluated: its results are kept until all are there. That makes the results the
/// same on any number of threads, and needs no lock between those who read.
class FormulaBatch {
 public:
  /// Not evaluated: others filled the memory that results may take. To be taken into the next batch.
  struct NotReached {};
  /// Why the formula has no value.
  struct Failure {
    std::string reason;
  };
  /// The value, no reference; or the cell that was met before its calculation.
  using Result = std::variant<NotReached, Value, UncalculatedCell, Failure>;

  /// All outlive this; `threads` and `unknown` may be null.
  FormulaBatch(const FormulaPlaces& places, const EvaluationContext& context, ICalculationThreads* threads,
               UnknownNames* unknown)
      : places_(places), context_(context), threads_(threads), unknown_(unknown) {}

  void Clear();
  /// Adds a formula; `anyThread` says whether it may be evaluated on another than the main thread.
  void Add(std::size_t number, bool anyThread);
  bool IsFull() const { return numbers_.size() >= kMostFormulas; }
  std::size_t Size() const { return numbers_.size(); }
  std::size_t NumberAt(std::size_t index) const { return numbers_[index]; }
  Result& ResultAt(std::size_t index) { return results_[index]; }

  void Evaluate();

 private:
  // Large enough that threads seldom wait for each other, small enough that results take little memory.
  static constexpr std::size_t kMostFormulas = 4096;

  void EvaluateAll(const std::vector<std::size_t>& indexes, std::atomic<std::size_t>& next, EvaluationContext& context);
  Result EvaluateOne(std::size_t number, EvaluationContext& context);
  bool IsWorthThreads() const;

  const FormulaPlaces& places_;
  const EvaluationContext& context_;
  ICalculationThreads* threads_;
  UnknownNames* unknown_;
  std::vector<std::size_t> numbers_;
  std::vector<std::size_t> onAnyThread_, onMainThread_;  // indexes of numbers_
  std::vector<Result> results_;
  std::atomic<std::size_t> bytesHeld_{0};
  double secondsSpent_ = 0;  // of all threads, in all batches
  std::int64_t evaluated_ = 0;
};

}  // namespace qcalc
