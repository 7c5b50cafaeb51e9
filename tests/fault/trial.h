// One call with all that is to go wrong during it, and what must hold afterwards whatever it was.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "call_values.h"
#include "host/faults/argument_fault.h"
#include "host/faults/odd_answer.h"
#include "host/library/allocation.h"

namespace qcalc::fault {

/// A callback that fails, or is answered oddly: the `nth` of its name, 0 for all.
struct CallbackFault {
  const XlCallback* callback = nullptr;
  int nth = 0;
  std::variant<int, AnswerKind> answer;  ///< a return code, or what stands in for the right answer
};

struct AllocationFault {
  std::int64_t nth = 1;
  AllocationFailure failure = AllocationFailure::kOnce;
};

/// What goes wrong during a call, on every thread that makes one meanwhile.
struct Faults {
  std::optional<ArgumentFault> damage;
  std::optional<CallbackFault> callback;
  std::optional<AllocationFault> allocation;

  bool IsNone() const { return !damage && !callback && !allocation; }
  /// Whether the processor may fault over what the call reads: the cell then says so, in any other case never.
  bool MayFault() const;
  void Arm(HostState& host) const;
  /// ", damaged: argument 2 is a null pointer" and the like.
  std::string Describe() const;
};

struct Trial {
  const RegisteredFunction* function = nullptr;
  std::vector<NamedValue> operands;
  Faults faults;
  /// What the call gives when nothing goes wrong. Where it is known, the result must be that or a failure told: that
  /// of memory that is out when an allocation fails.
  std::optional<Value> answer = std::nullopt;
  /// The stores are emptied before.
  bool forgets = false;

  std::string Describe() const {
    return DescribeCall(*function, operands) + (forgets ? ", the stores being empty" : "") + faults.Describe();
  }
};

/// Makes trials and looks at what they leave behind. The add-in is open.
class TrialRunner {
 public:
  TrialRunner(Session& session, CallValues& values);

  /// Makes the trial on this thread, which is the main thread, then looks: the result, the host's complaints, the
  /// loans, a plain call, the add-in's live blocks. What is wrong, empty when nothing is.
  std::string Try(const Trial& trial);

  /// Makes the call with its callbacks and allocations counted, and only looks at what it gives.
  Value Observe(const Trial& trial);
  /// The callbacks that it made then, with their numbers.
  std::vector<std::pair<const XlCallback*, int>> CallbacksMade() const;
  /// All callbacks that plain calls make.
  const std::vector<const XlCallback*>& UsualCallbacks() const { return usualCallbacks_; }

  /// Makes the call alone and checks what it returned; to be called on any thread, whatever is armed. What is wrong.
  std::string CheckCall(const Trial& trial) { return Check(trial, false); }
  /// Makes a plain call of the function, nothing being armed, and compares: "" or what is wrong. On any thread.
  std::string CheckPlainCall(const RegisteredFunction& function);
  /// What the host has to complain of, the loans included; "" when nothing.
  std::string CheckBooks();

  /// Calls that CheckCall has made in which the damage, if any, could be done.
  std::int64_t CallsMade() const { return callsMade_; }

  const std::vector<const RegisteredFunction*>& Functions() const { return functions_; }
  const CallValues& Values() const { return values_; }
  HostState& Host() { return host_; }

 private:
  /// A plain call whose answer was the same twice. Hidden functions have none: they look after what others stored, and
  /// answer by it.
  struct Witness {
    std::vector<Value> operands;
    Value answer;
  };

  Value Call(const RegisteredFunction& function, std::span<const Value> operands);
  /// `isAlone`: no other thread calls meanwhile, so that what was counted was this call's.
  std::string Check(const Trial& trial, bool isAlone);
  bool WasBrokenOff(const Faults& faults) const;
  void Forget();
  void FindWitnesses(const RegisteredFunction& function);
  std::string RunOnce(const Trial& trial);

  CallValues& values_;
  HostState& host_;
  std::vector<const RegisteredFunction*> functions_;
  std::map<const RegisteredFunction*, std::vector<Witness>> witnesses_;
  std::vector<const XlCallback*> usualCallbacks_;
  std::atomic<std::int64_t> callsMade_{0};
};

}  // namespace qcalc::fault
