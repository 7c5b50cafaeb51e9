// Counts the add-in's callbacks by name, and makes some of them fail or go astray.
#pragma once

#include <array>
#include <atomic>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/faults/odd_answer.h"
#include "host/formulas/formula.h"
#include "xlcall/callback_list.h"

namespace qcalc {

/// What befalls one callback beside its count.
struct Interference {
  std::optional<int> code;                 ///< it must return that instead of being made
  std::optional<AnswerKind> answer;        ///< it succeeds with a value of that kind instead of its own
  std::shared_ptr<const Formula> formula;  ///< it succeeds with what that gives, calls of the add-in included
  bool hasFault = false;                   ///< the host meets a fault of its own on the way, and handles it
};

/// Counting may happen on any thread; arming and reading happen between evaluations.
class CallbackMeter {
 public:
  /// Begins an evaluation: all counts are 0, and what was asked of Fail since the last Stop holds until then.
  void Start();

  /// Ends an evaluation: nothing fails any more; the counts stay to be read.
  void Stop();

  /// The callbacks to which something was to happen in the last evaluation for which that was asked, and did not.
  std::vector<std::string> TakeUnmet() { return std::exchange(unmet_, {}); }

  /// During the next evaluation the `nth` callback of that name (1-based; 0: every one) returns `code`.
  void Fail(const XlCallback& callback, int code, int nth);

  /// During the next evaluation the `nth` callback of that name (1-based; 0: every one) that is in order gives a value
  /// of that kind.
  void AnswerWith(const XlCallback& callback, AnswerKind kind, int nth);

  /// The same with what a formula gives; the callbacks that its calls of the add-in make count too.
  void AnswerWith(const XlCallback& callback, const Formula& formula, int nth);

  /// During the next evaluation the host meets a fault of its own in every callback of that name.
  void FaultIn(const XlCallback& callback);

  /// Counts one callback, and says what is to befall it.
  Interference Count(const XlCallback& callback);

  int Calls(const XlCallback& callback) const;

 private:
  struct Entry {
    std::atomic<int> calls{0};
    Interference armed;
    int nth = 0;
    bool isArmed = false;
    std::atomic<bool> isMet{false};
  };

  /// The entry of a callback to whose `nth` call something is to happen.
  Entry& Arm(const XlCallback& callback, int nth);
  static std::size_t IndexOf(const XlCallback& callback) { return static_cast<std::size_t>(&callback - kXlCallbacks); }

  std::array<Entry, std::size(kXlCallbacks)> entries_;
  std::atomic<bool> isRunning_{false};
  std::vector<std::string> unmet_;
};

}  // namespace qcalc
