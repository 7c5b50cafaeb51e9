// Calls to the object model that fail on purpose, as a busy or a vanished Excel fails them.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qcalc {

/// The steps that can be refused whole, beside members by their names, which stand for their Invoke.
inline constexpr std::string_view kGetIdsOfNames = "GetIDsOfNames";
inline constexpr std::string_view kInvoke = "Invoke";
inline constexpr std::string_view kAccessibleObject = "AccessibleObjectFromWindow";
inline constexpr std::string_view kBookWindows = "EnumChildWindows";
inline constexpr std::string_view kAnyCall = "any";

/// Armed between calls into the add-in, counted on any thread.
class ObjectRefusals {
 public:
  /// From now to the end of the next evaluation the `nth` call (1-based; 0: every one) of that name fails with `code`,
  /// an HRESULT. kBookWindows hides the windows of all books, whatever `nth` says; kAnyCall means calls of every step.
  void Refuse(std::string name, std::int32_t code, int nth);

  /// Counts one call of a step, for kInvoke with the member's name; with what it is to fail.
  std::optional<std::int32_t> Count(std::string_view step, std::string_view member = {});

  bool HidesBookWindows() const { return hidesBookWindows_; }

  /// Ends an evaluation: nothing fails any more.
  void Stop();

  /// The names that were refused in the last evaluation for which that was asked, and were not called so often.
  std::vector<std::string> TakeUnmet() { return std::exchange(unmet_, {}); }

 private:
  struct Armed {
    std::string name;
    std::int32_t code;
    int nth;
    int calls = 0;
    bool isMet = false;
  };

  std::mutex mutex_;
  std::vector<Armed> armed_;
  std::atomic<bool> isArmed_{false};
  std::atomic<bool> hidesBookWindows_{false};
  std::vector<std::string> unmet_;
};

}  // namespace qcalc
