// From where the add-in calls back: each thread knows the call of the host's that it is in, if any.
#pragma once

#include <optional>
#include <string>

#include "host/calculation/evaluation_context.h"
#include "host/process/journal.h"

namespace qcalc {

struct HostState;

/// What kind of call the host made into the add-in; it decides which callbacks Excel allows there.
enum class Place {
  kThreadSafeFunction,  ///< registered with "$"
  kFunction,            ///< a plain worksheet function
  kMacroFunction,       ///< registered with "#"
  kCommand,             ///< a command, xlAutoOpen and the like
  kFreeing,             ///< xlAutoFree, xlAutoFree12
};

/// One call into the add-in, for as long as the object lives, on the thread that makes it.
class CallContext {
 public:
  /// `function` is the name that complaints give; `evaluation` says what the current sheet is and who calls, and
  /// outlives this.
  CallContext(HostState& host, Place place, std::string function, const EvaluationContext& evaluation);
  ~CallContext();
  CallContext(const CallContext&) = delete;
  CallContext& operator=(const CallContext&) = delete;

  /// The innermost call this thread is in; null outside any.
  static CallContext* Current();

  /// Whether an answer to the add-in depends on the sheet of that id being the current one.
  bool IsCurrentSheet(IDSHEET sheet) const { return evaluation.sheet && evaluation.sheet->Id() == sheet; }

  HostState& host;
  const Place place;
  const std::string function;
  const EvaluationContext& evaluation;
  /// The code after which the function must return, making no callback but xlFree: xlretAbort, xlretUncalced; else 0.
  int mustReturn = 0;
  /// The cell that was to be read before its calculation.
  std::optional<UncalculatedCell> uncalculated;
  /// Whether the host spoilt an argument of the call on purpose.
  bool isSpoilt = false;
  /// What xlfVolatile asked for.
  std::optional<bool> isVolatile;

 private:
  CallContext* outer_;
  const CallNote note_;
};

}  // namespace qcalc
