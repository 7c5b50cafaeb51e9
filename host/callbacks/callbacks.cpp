#include "host/callbacks/callbacks.h"

#include <exception>

#include "host/addin/handed_memory.h"
#include "host/api/oper_types.h"
#include "host/calculation/evaluator.h"
#include "host/callbacks/rules.h"
#include "host/faults/argument_damage.h"
#include "host/faults/handled_fault.h"
#include "host/library/allocation.h"
#include "host/text/digits.h"

namespace qcalc {
namespace {

/// The answer of a callback that is not carried out; `reason` goes to the complaints when there is one.
struct Refusal {
  int code;
  std::string reason;
};

/// Gives back one value of xlFree's and sets its pointer to null. The reason to complain, empty when there is none.
template <typename Oper>
std::string FreeValue(Oper& oper, Loans& loans) {
  const std::uint32_t type = TypeOf(oper);
  if (!HasMemory(type)) return {};
  void* memory = TakeMemory(oper);
  // A sheet's id alone has no memory.
  if (!memory && type == xltypeRef) return {};
  if (!memory) return "was given a value that had been freed before";
  switch (loans.TakeBack(memory)) {
    case Loans::Receipt::kTaken:
      return {};
    case Loans::Receipt::kTakenBefore:
      return "freed a value twice";
    case Loans::Receipt::kUnknown:
      break;
  }
  return "was given a value that the host had not lent";
}

/// Where and how the callback is made: the number's bits, the place, the count and the pointers.
template <typename Width>
std::optional<Refusal> Check(int xlfn, const XlCallback& callback, const CallbackRule& rule, const CallContext& context,
                             int count, typename Width::Oper** arguments) {
  const bool isCommand = (xlfn & xlCommand) != 0;
  if (xlfn & xlPrompt)
    return Refusal{xlretInvXlfn, isCommand ? "was made with xlPrompt: its dialog would wait for a person"
                                           : "was made with xlPrompt, which is for commands alone"};
  if (const int code = RefusalCode(rule.kind, context.place))
    return Refusal{code, std::string("may not be made from ") + PlaceName(context.place)};
  if (count < rule.fewest || count > rule.most)
    return Refusal{xlretInvCount, "was given " + std::to_string(count) + " arguments"};
  for (int i = 0; i < count; ++i)
    if (!arguments || !arguments[i])
      return Refusal{xlretInvXloper, "was given a null pointer as argument " + std::to_string(i + 1)};
  if (!rule.handler && callback.number != xlFree) return Refusal{xlretFailed, "is not offered by this host"};
  return std::nullopt;
}

/// Carries out the callback, or evaluates the formula that stands in for it; what they throw becomes a code.
CallbackAnswer Answer(const CallbackRule& rule, const Formula* formula, CallbackRequest& request) {
  try {
    return formula ? CallbackAnswer(Evaluate(*formula, request.Evaluation())) : rule.handler(request);
  } catch (const NotThreadSafe&) {
    request.Complain("reached a function that is not thread-safe from one that is");
    return CallbackAnswer::Failure(xlretNotThreadSafe);
  } catch (const UncalculatedCell& cell) {
    request.context.uncalculated = cell;
    return CallbackAnswer::Failure(xlretUncalced);
  } catch (const FormulaError& error) {
    request.Complain(std::string("could not be answered: ") + error.what());
    return CallbackAnswer::Failure(xlretFailed);
  } catch (const std::exception&) {
    return CallbackAnswer::Failure(xlretFailed);  // a result too large, or no memory for it
  }
}

template <typename Width>
CallbackAnswer MakeCallback(int xlfn, CallContext* context, int count, typename Width::Oper** arguments) {
  const XlCallback* callback = FindXlCallback(xlfn);
  HostState* host = context ? &context->host : HostState::Loaded();
  const auto refuse = [&](int code, const std::string& reason) {
    const std::string who = context ? context->function : "outside any call of the host's";
    const std::string what = callback ? std::string(callback->name) : "callback number " + std::to_string(xlfn);
    if (host && !reason.empty()) host->complaints.Add(who + ": " + what + " " + reason);
    return CallbackAnswer::Failure(code);
  };
  if (!callback) return refuse(xlretInvXlfn, "is unknown");
  if (!context) return refuse(xlretInvXlfn, "may not be made");
  const Interference interference = host->meter.Count(*callback);
  const std::optional<int> injected = interference.code;
  if (interference.hasFault && !HandleOwnFault()) refuse(0, "lost a fault of the host's to another handler");
  const bool isFree = callback->number == xlFree;
  if (context->mustReturn && !isFree)
    return refuse(context->mustReturn, "was made after a code that leaves only xlFree allowed");
  const CallbackRule rule = RuleOf(*callback);
  const auto refusal = Check<Width>(xlfn, *callback, rule, *context, count, arguments);
  if (injected && !isFree) return CallbackAnswer::Failure(*injected);
  if (refusal) return refuse(refusal->code, refusal->reason);
  if (isFree) {
    // Also when it is to fail: what an add-in gave back in time is not its debt.
    for (int i = 0; i < count; ++i)
      if (std::string reason = FreeValue(*arguments[i], host->loans); !reason.empty()) refuse(0, reason);
    return injected ? CallbackAnswer::Failure(*injected) : CallbackAnswer(Value::Boolean(true));
  }
  CallbackRequest request{*context, *callback, (xlfn & xlIntl) != 0, {}};
  const IDSHEET current = context->evaluation.sheet ? context->evaluation.sheet->Id() : 0;
  for (int i = 0; i < count; ++i) {
    // What the host itself has spoilt may come back to it.
    if (context->isSpoilt && !IsReadable<Width>(*arguments[i])) return CallbackAnswer::Failure(xlretInvXloper);
    if (const std::string defect = DefectOfMemory<Width>(*arguments[i], host->loans); !defect.empty())
      return refuse(xlretInvXloper,
                    context->isSpoilt ? "" : "was given " + defect + " as argument " + std::to_string(i + 1));
    Reading reading = Marshal<Width>::Read(*arguments[i], current);
    if (!reading.defect.empty() && !context->isSpoilt)
      refuse(xlretInvXloper, "was given " + reading.defect + " as argument " + std::to_string(i + 1));
    if (reading.isMalformed) return CallbackAnswer::Failure(xlretInvXloper);
    if (const IDSHEET sheet = SheetOf(reading.value); sheet && !host->workbooks.FindSheet(sheet)) {
      const std::string which = std::to_string(i + 1);
      return refuse(xlretFailed, context->isSpoilt ? "" : "was given a sheet that does not exist as argument " + which);
    }
    request.arguments.push_back(std::move(reading.value));
  }
  if (interference.answer) return AnswerOf(*interference.answer, current);
  return Answer(rule, interference.formula.get(), request);
}

/// Writes the answer into the add-in's value, lending it what hangs on it.
template <typename Width>
int Deliver(CallbackAnswer answer, CallContext* context, int xlfn, typename Width::Oper* result) {
  if (answer.code == xlretSuccess && !Marshal<Width>::Fits(answer.value)) answer = CallbackAnswer::Failure(xlretFailed);
  // To give memory back calculates nothing: its code says nothing of the calculation.
  const bool breaksOff = (answer.code == xlretUncalced || answer.code == xlretAbort) && xlfn != xlFree;
  if (context && breaksOff) context->mustReturn = answer.code;
  if (!result) return answer.code;
  if (answer.code != xlretSuccess || !context) {
    Marshal<Width>::Write(Value::Error(xlerrValue), {}, nullptr, *result);
    return answer.code;
  }
  const ReferenceForm form = context->host.FormOf(context->evaluation);
  const std::size_t bytes = Marshal<Width>::BlockBytes(answer.value, form);
  std::byte* block = nullptr;
  if (bytes) block = context->host.loans.Lend(bytes, {context->function, FindXlCallback(xlfn)->name});
  Marshal<Width>::Write(answer.value, form, block, *result);
  return answer.code;
}

template <typename Width>
int Callback(int xlfn, int count, typename Width::Oper** arguments, typename Width::Oper* result) {
  const RunningCode running(RunningCode::Owner::kHost);
  CallContext* context = CallContext::Current();
  // No exception may run through the add-in.
  try {
    return Deliver<Width>(MakeCallback<Width>(xlfn, context, count, arguments), context, xlfn, result);
  } catch (const std::exception&) {
    if (result) Marshal<Width>::Write(Value::Error(xlerrValue), {}, nullptr, *result);
    return xlretFailed;
  }
}

}  // namespace
}  // namespace qcalc

int MdCallBack12(int xlfn, int count, XLOPER12** arguments, XLOPER12* result) {
  return qcalc::Callback<qcalc::Wide>(xlfn, count, arguments, result);
}

int Excel4v(int xlfn, XLOPER* result, int count, XLOPER** arguments) {
  return qcalc::Callback<qcalc::Narrow>(xlfn, count, arguments, result);
}

int XLCallVer() {
  constexpr int kSince2007 = 0x0C00;
  constexpr int kBefore = 0x0500;
  const qcalc::HostState* host = qcalc::HostState::Loaded();
  if (!host) return kSince2007;
  int version = 0;
  for (const XCHAR unit : host->settings.version) {
    if (!qcalc::IsDigit(unit)) break;
    version = version * 10 + (unit - '0');
  }
  return version < 12 ? kBefore : kSince2007;
}
