// Truth values combined item by item into results, until each is decided.
//
// AND and OR are one thing but for the truth that decides: FALSE decides AND, TRUE decides OR. The other truth leaves
// the result open, and is the result when nothing decides. An item without a truth value counts as FALSE; an error
// among the items that are looked at is the result from there on.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/values/array_builder.h"
#include "frame/values/cell.h"
#include "frame/values/scratch_array.h"
#include "logic/prefetch_ahead.h"
#include "table/truth_value.h"

namespace quillmere::logic {

/// What is known of one result: nothing, or these bits. Behind an error kDecided no longer counts.
using Decision = std::uint8_t;
inline constexpr Decision kOpen = 0;
inline constexpr Decision kDecided = 1;
inline constexpr Decision kErroneous = 2;

/// Of an item that is neither a number nor a boolean. What is no single cell is "Bad XLOPER type".
Decision DecideByOther(const XLOPER12& item, bool decider);

/// Combines an item into a decision. Numbers and booleans do so whatever was decided before, which takes no branch that
/// cannot be foreseen. True when the item is an error, and the first that counts.
template <bool decider>
inline bool Combine(Decision& decision, const XLOPER12& item) {
  if (HasPlainTruth(item)) {
    decision |= PlainTruth(item) == decider ? kDecided : kOpen;
  } else if (decision == kOpen) {
    decision = DecideByOther(item, decider);
    return decision == kErroneous;
  }
  return false;
}

/// Combines `count` items, in their order, into one decision, and stops soon after it is made. `error` receives the
/// item that makes it erroneous.
template <bool decider>
Decision CombineRun(const XLOPER12* items, std::int64_t count, const XLOPER12*& error) {
  constexpr std::int64_t kBetweenLooks = 8;
  Decision decision = kOpen;
  while (count > 0 && decision == kOpen) {
    const std::int64_t stretch = std::min(count, kBetweenLooks);
    for (std::int64_t at = 0; at < stretch; ++at) {
      PrefetchAhead<false>(items + at);
      if (Combine<decider>(decision, items[at])) [[unlikely]]
        error = items + at;
    }
    items += stretch;
    count -= stretch;
  }
  return decision;
}

/// Results of an array under construction, some of them at a time. Places count from 0 among those.
template <bool decider>
class Decisions {
 public:
  /// For at most `most` results at a time.
  Decisions(CXlArrayBuilder& builder, std::int64_t most)
      : builder_(&builder), decisions_(static_cast<std::size_t>(most)) {}

  /// Opens the next `count` results, which are to stand from `results` on.
  void Open(XLOPER12* results, std::int64_t count) {
    results_ = results;
    count_ = count;
    std::fill_n(decisions_.data(), count, kOpen);
  }

  /// Whether one of `count` results is still open.
  bool HasOpen(std::int64_t first, std::int64_t count) const {
    return std::memchr(decisions_.data() + first, kOpen, static_cast<std::size_t>(count)) != nullptr;
  }
  bool HasOpen() const { return HasOpen(0, count_); }

  /// Combines each of `count` items into a result of its own.
  void CombineEach(std::int64_t first, const XLOPER12* items, std::int64_t count) {
    Decision* const decisions = decisions_.data() + first;
    for (std::int64_t at = 0; at < count; ++at) {
      PrefetchAhead<false>(items + at);
      if (Combine<decider>(decisions[at], items[at])) [[unlikely]]
        PutError(first + at, items[at]);
    }
  }

  /// Combines `count` items into one result.
  void CombineAll(std::int64_t place, const XLOPER12* items, std::int64_t count) {
    if (decisions_[static_cast<std::size_t>(place)] != kOpen) return;
    const XLOPER12* error = nullptr;
    decisions_[static_cast<std::size_t>(place)] = CombineRun<decider>(items, count, error);
    if (error) [[unlikely]]
      PutError(place, *error);
  }

  /// Writes the results that are no errors; those stand already.
  void Settle() {
    // Copied whole: a cell that is put together takes longer than the test of one.
    const XLOPER12 answers[] = {BooleanCell(!decider), BooleanCell(decider)};
    const Decision* const decisions = decisions_.data();
    for (std::int64_t at = 0; at < count_; ++at) {
      PrefetchAhead<true>(results_ + at);
      if (decisions[at] < kErroneous) [[likely]]
        results_[at] = answers[decisions[at]];
    }
  }

 private:
  void PutError(std::int64_t place, const XLOPER12& error) { builder_->CopyCells(results_ + place, &error, 1); }

  CXlArrayBuilder* builder_;
  ScratchArray<Decision> decisions_;
  XLOPER12* results_ = nullptr;
  std::int64_t count_ = 0;
};

}  // namespace quillmere::logic
