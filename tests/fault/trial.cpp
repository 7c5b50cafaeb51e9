#include "trial.h"

#include <algorithm>
#include <array>

#include "host/addin/evaluation_watch.h"
#include "host/values/literal.h"
#include "host/values/value_order.h"

namespace qcalc::fault {
namespace {

// What a cell says of a fault of the processor that the add-in caught.
constexpr XStringView kFaultText = XTEXT("#ERROR: 'C' exception");
constexpr XStringView kFailureText = XTEXT("#");  ///< how functions tell theirs
constexpr XStringView kMemoryText = XTEXT("#ERROR: Memory allocation failed");

bool StartsWith(const Value& value, XStringView prefix) { return value.IsText() && value.AsText().starts_with(prefix); }

std::string Shorten(std::string text) {
  constexpr std::size_t kShown = 200;
  if (text.size() > kShown) text = text.substr(0, kShown) + "...";
  return text;
}

std::string Describe(const Value& value) { return value.IsReference() ? "a reference" : Shorten(PrintLiteral(value)); }

/// As a script says it.
std::string DescribeDamage(const ArgumentFault& damage) {
  constexpr const char* kWords[] = {"null", "type ", "bits ", "length ", "dims ", "pointer", "nested"};
  std::string text =
      ", mutate " + std::to_string(damage.argument) + " " + kWords[static_cast<std::size_t>(damage.kind)];
  if (damage.kind == ArgumentFaultKind::kDims)
    text += std::to_string(damage.rows) + "x" + std::to_string(damage.columns);
  else if (text.ends_with(' '))
    text += std::to_string(damage.number);
  return text;
}

std::string DescribeCallback(const CallbackFault& fault) {
  std::string text = ", ";
  text += fault.nth == 0 ? "every" : "the " + std::to_string(fault.nth) + ".";
  text += " " + std::string(fault.callback->name);
  if (const int* code = std::get_if<int>(&fault.answer)) return text + " returns " + std::to_string(*code);
  return text + " is answered with kind " + std::to_string(static_cast<int>(std::get<AnswerKind>(fault.answer)));
}

/// What is wrong with the result of a trial; empty when nothing is.
std::string FaultOf(const Trial& trial, const Value& result) {
  if (!trial.faults.MayFault() && StartsWith(result, kFaultText))
    return "a fault of the processor where nothing should fault: " + Shorten(PrintLiteral(result));
  if (!trial.answer || SameValue(*trial.answer, result)) return {};
  const bool isDue =
      trial.faults.allocation ? StartsWith(result, kMemoryText) : result.IsError() || StartsWith(result, kFailureText);
  return isDue ? "" : "neither the right answer nor the error that is due: " + Describe(result);
}

}  // namespace

bool Faults::MayFault() const {
  using enum ArgumentFaultKind;
  return damage && std::ranges::count(std::array{kType, kLength, kDims, kPointer}, damage->kind) != 0;
}

void Faults::Arm(HostState& host) const {
  if (damage) host.faults.SpoilArgument(*damage);
  if (allocation) AddinAllocations().Fail(allocation->nth, allocation->failure);
  if (!callback) return;
  if (const int* code = std::get_if<int>(&callback->answer))
    host.meter.Fail(*callback->callback, *code, callback->nth);
  else
    host.meter.AnswerWith(*callback->callback, std::get<AnswerKind>(callback->answer), callback->nth);
}

std::string Faults::Describe() const {
  std::string text;
  if (damage) text += DescribeDamage(*damage);
  if (callback) text += DescribeCallback(*callback);
  if (allocation)
    text += ", allocation " + std::to_string(allocation->nth) +
            (allocation->failure == AllocationFailure::kOnce ? " fails" : " and all later ones fail");
  return text;
}

TrialRunner::TrialRunner(Session& session, CallValues& values) : values_(values), host_(session.Host()) {
  AddinAllocations().TrackBlocks();
  for (const RegisteredFunction* function : host_.registry.All())
    if (!function->IsCommand())
      for (const RegisteredFunction* entry : {function, static_cast<const RegisteredFunction*>(function->narrow.get())})
        if (entry) functions_.push_back(entry);
  for (const RegisteredFunction* function : functions_) FindWitnesses(*function);
}

Value TrialRunner::Call(const RegisteredFunction& function, std::span<const Value> operands) {
  // Each stands in a cell of its own: what one keeps there is none of the others' business.
  EvaluationContext context = values_.Context();
  const auto place = std::ranges::find(functions_, &function) - functions_.begin();
  context.caller.areas[0].firstRow += static_cast<std::int32_t>(place);
  context.caller.areas[0].lastRow += static_cast<std::int32_t>(place);
  return context.addin->Call(function, operands, context);
}

void TrialRunner::FindWitnesses(const RegisteredFunction& function) {
  std::vector<Witness>& witnesses = witnesses_[&function];
  for (const PlainCall plain : kPlainCalls) {
    const Trial trial{&function, values_.PlainOperands(function, plain), {}};
    Witness witness{ValuesOf(trial.operands), {}};
    // The first call may set up what the later ones find.
    Observe(trial);
    for (const auto& [callback, calls] : CallbacksMade())
      if (std::find(usualCallbacks_.begin(), usualCallbacks_.end(), callback) == usualCallbacks_.end())
        usualCallbacks_.push_back(callback);
    witness.answer = Call(function, witness.operands);
    if (!function.IsHidden() && SameValue(witness.answer, Call(function, witness.operands)))
      witnesses.push_back(std::move(witness));
  }
}

Value TrialRunner::Observe(const Trial& trial) {
  if (trial.forgets) Forget();
  trial.faults.Arm(host_);
  const EvaluationWatch watch(host_);
  return Call(*trial.function, ValuesOf(trial.operands));
}

std::vector<std::pair<const XlCallback*, int>> TrialRunner::CallbacksMade() const {
  std::vector<std::pair<const XlCallback*, int>> made;
  for (const XlCallback& callback : kXlCallbacks)
    if (const int calls = host_.meter.Calls(callback)) made.emplace_back(&callback, calls);
  return made;
}

/// Empties the stores as VBA code does.
void TrialRunner::Forget() {
  for (const char* const destroy : {"Destroy_RowIDString", "Destroy_RowIDLong", "Destroy_ColIDLong"})
    if (const auto empty = host_.library->FindAs<std::int32_t (*)()>(destroy)) empty();
}

/// Whether a callback answered that the function has to end.
bool TrialRunner::WasBrokenOff(const Faults& faults) const {
  const int* const code = faults.callback ? std::get_if<int>(&faults.callback->answer) : nullptr;
  return code && (*code == xlretAbort || *code == xlretUncalced) && faults.callback->callback->number != xlFree &&
         host_.meter.Calls(*faults.callback->callback) >= std::max(faults.callback->nth, 1);
}

std::string TrialRunner::Check(const Trial& trial, bool isAlone) {
  Value result;
  try {
    result = Call(*trial.function, ValuesOf(trial.operands));
  } catch (const FormulaError&) {
    // The host says so when the damage cannot be done to what the argument is.
    if (!trial.faults.damage) throw;
    return {};
  }
  ++callsMade_;
  if (isAlone && WasBrokenOff(trial.faults) && !SameValue(result, Value::Error(xlerrValue)))
    return "told to end, it gave " + Describe(result);
  return FaultOf(trial, result);
}

std::string TrialRunner::CheckPlainCall(const RegisteredFunction& function) {
  for (const Witness& witness : witnesses_.at(&function)) {
    const Value answer = Call(function, witness.operands);
    if (!SameValue(witness.answer, answer))
      return "a plain call gives " + Describe(answer) + " in place of " + Describe(witness.answer);
  }
  return {};
}

std::string TrialRunner::CheckBooks() {
  std::string wrong;
  for (const std::string& text : host_.complaints.Take()) wrong += (wrong.empty() ? "" : "; ") + text;
  for (const std::string& text : host_.loans.Close()) wrong += (wrong.empty() ? "" : "; ") + text;
  return wrong;
}

std::string TrialRunner::RunOnce(const Trial& trial) {
  std::string wrong;
  {
    if (trial.forgets) Forget();
    trial.faults.Arm(host_);
    const EvaluationWatch watch(host_);
    wrong = Check(trial, true);
  }
  if (wrong.empty()) wrong = CheckBooks();
  return wrong;
}

std::string TrialRunner::Try(const Trial& trial) {
  if (trial.forgets) Forget();
  std::int64_t live = AddinAllocations().LiveBlocks();
  if (std::string wrong = RunOnce(trial); !wrong.empty()) return wrong;
  // What a function keeps from its first call on it does not keep again: a loss goes on for ever.
  constexpr int kRepetitions = 3;
  for (int repetition = 0; AddinAllocations().LiveBlocks() > live; ++repetition) {
    if (repetition == kRepetitions)
      return "every such call leaves blocks behind, now " + std::to_string(AddinAllocations().LiveBlocks());
    live = AddinAllocations().LiveBlocks();
    if (std::string wrong = RunOnce(trial); !wrong.empty()) return wrong;
  }
  std::string wrong = CheckPlainCall(*trial.function);
  return wrong.empty() ? CheckBooks() : wrong;
}

}  // namespace qcalc::fault
