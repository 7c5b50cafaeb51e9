// Counting what matching one text takes.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "text/regex/regex_budget.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// How long a step takes: in an expression that calls itself it may be as long as the text, which nothing else bounds.
enum class StepLength { kShort, kAny };

/// The steps of one text.
class RegexSteps {
 public:
  RegexSteps(std::size_t units, StepLength length, RegexBudget& budget) noexcept;
  RegexSteps(const RegexSteps&) = delete;
  RegexSteps& operator=(const RegexSteps&) = delete;
  ~RegexSteps() {
    if (isTimed_) Stop();
  }

  /// Counts one; CXlRegexLimitException where none is left.
  void Count() {
    if (--left_ < 0) [[unlikely]]
      TakeMore();
  }

 private:
  void TakeMore();
  void Stop() noexcept;
  void UseTime() noexcept;

  std::int64_t left_;   ///< of those taken last
  std::int64_t taken_;  ///< how many these were
  std::int64_t own_;    ///< the text's own that are still to be taken
  RegexBudget& budget_;
  bool isTimed_;
  bool pays_ = false;
  std::int64_t since_ = 0;  ///< when the steps taken last began
};

/// A place in a text that counts the looks at it.
class RegexPlace {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = XCHAR;
  using difference_type = std::ptrdiff_t;
  using pointer = const XCHAR*;
  using reference = const XCHAR&;

  RegexPlace() = default;
  RegexPlace(const XCHAR* unit, RegexSteps& steps) noexcept : unit_(unit), steps_(&steps) {}

  const XCHAR* Unit() const noexcept { return unit_; }

  const XCHAR& operator*() const {
    steps_->Count();
    return *unit_;
  }
  RegexPlace& operator++() noexcept { return *this += 1; }
  RegexPlace& operator--() noexcept { return *this -= 1; }
  RegexPlace operator++(int) noexcept {
    const RegexPlace before = *this;
    ++unit_;
    return before;
  }
  RegexPlace operator--(int) noexcept {
    const RegexPlace before = *this;
    --unit_;
    return before;
  }
  RegexPlace& operator+=(std::ptrdiff_t units) noexcept {
    unit_ += units;
    return *this;
  }
  RegexPlace& operator-=(std::ptrdiff_t units) noexcept {
    unit_ -= units;
    return *this;
  }
  friend RegexPlace operator+(RegexPlace place, std::ptrdiff_t units) noexcept { return place += units; }
  friend RegexPlace operator-(RegexPlace place, std::ptrdiff_t units) noexcept { return place -= units; }
  friend std::ptrdiff_t operator-(const RegexPlace& a, const RegexPlace& b) noexcept { return a.unit_ - b.unit_; }
  /// The library asks so whether it is at the end, where an expression can go on for ever without a look at a unit.
  friend bool operator==(const RegexPlace& a, const RegexPlace& b) {
    if (a.unit_ != b.unit_) return false;
    if (a.steps_) a.steps_->Count();
    return true;
  }
  friend auto operator<=>(const RegexPlace& a, const RegexPlace& b) noexcept { return a.unit_ <=> b.unit_; }

 private:
  const XCHAR* unit_ = nullptr;
  RegexSteps* steps_ = nullptr;
};

}  // namespace quillmere::text
