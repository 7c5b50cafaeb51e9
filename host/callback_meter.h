// Counts the add-in's callbacks by name, and makes some of them fail.
#pragma once

#include <array>
#include <atomic>
#include <iterator>
#include <optional>
#include <string_view>

#include "xlcall/callback_list.h"

namespace qcalc {

/// Counting may happen on any thread; arming and reading happen between evaluations.
class CallbackMeter {
 public:
  /// Begins an evaluation: all counts are 0, and what was asked of Fail since the last Stop holds until then.
  void Start();

  /// Ends an evaluation: nothing fails any more; the counts stay to be read.
  void Stop();

  /// During the next evaluation the `nth` callback of that name (1-based; 0: every one) returns `code`.
  void Fail(const XlCallback& callback, int code, int nth);

  /// Counts one callback. The code that it must return instead of being made, if any.
  std::optional<int> Count(const XlCallback& callback);

  int Calls(const XlCallback& callback) const;

 private:
  struct Entry {
    std::atomic<int> calls{0};
    int code = 0;
    int nth = 0;
    bool fails = false;
  };

  static std::size_t IndexOf(const XlCallback& callback) { return static_cast<std::size_t>(&callback - kXlCallbacks); }

  std::array<Entry, std::size(kXlCallbacks)> entries_;
  std::atomic<bool> isRunning_{false};
};

}  // namespace qcalc
