// Script commands by which things go wrong on purpose in the next evaluation.
#include <limits>

#include "host/faults/handled_fault.h"
#include "host/library/allocation.h"
#include "host/scripts/runner.h"
#include "host/text/digits.h"

namespace qcalc {
namespace {

constexpr std::int32_t kMostType = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMostLength = 0xFFFF;

struct CodeName {
  std::string_view name;
  int code;
};

constexpr CodeName kCodes[] = {
    {"xlretAbort", xlretAbort},
    {"xlretInvXlfn", xlretInvXlfn},
    {"xlretInvCount", xlretInvCount},
    {"xlretInvXloper", xlretInvXloper},
    {"xlretStackOvfl", xlretStackOvfl},
    {"xlretFailed", xlretFailed},
    {"xlretUncalced", xlretUncalced},
    {"xlretNotThreadSafe", xlretNotThreadSafe},
    {"xlretInvAsynchronousContext", xlretInvAsynchronousContext},
    {"xlretNotClusterSafe", xlretNotClusterSafe},
};

int CodeAt(ScriptLine& line) {
  std::string names;
  const std::string_view word = line.Word("a return code");
  for (const CodeName& code : kCodes) {
    if (code.name == word) return code.code;
    names += (names.empty() ? "" : ", ") + std::string(code.name);
  }
  line.FailIn(word, "expected a return code (" + names + "), found '" + std::string(word) + "'");
}

/// A number in decimal, or in hexadecimal behind "0x".
std::int64_t NumberOrHex(ScriptLine& line, std::string_view expected, std::int32_t most) {
  const std::string_view word = line.Word(expected);
  const bool isHex = word.starts_with("0x");
  const auto number = isHex ? ReadWhole<std::int64_t>(word.substr(2), 16) : ReadWhole<std::int64_t>(word);
  if (!number || *number < 0 || *number > most)
    line.FailIn(word, "expected " + std::string(expected) + " from 0 to " + std::to_string(most) + ", found '" +
                          std::string(word) + "'");
  return *number;
}

ScriptAction ParseMutate(ScriptLine& line) {
  ArgumentFault fault;
  fault.argument = line.WholeNumber("the number of an argument", 1, kXlMaxArguments);
  fault.kind = static_cast<ArgumentFaultKind>(
      line.Choice({"null", "type", "bits", "length", "dims", "pointer", "nested"}));  // in the order of the kinds
  switch (fault.kind) {
    case ArgumentFaultKind::kType:
    case ArgumentFaultKind::kBits:
      fault.number = NumberOrHex(line, "bits of a type", kMostType);
      break;
    case ArgumentFaultKind::kLength:
      fault.number = NumberOrHex(line, "a length", kMostLength);
      break;
    case ArgumentFaultKind::kDims: {
      // Either may be negative or absurd.
      const ScriptSize size = line.SizeIn(line.Word("a size such as 3x2"), std::numeric_limits<std::int32_t>::min());
      fault.rows = size.rows;
      fault.columns = size.columns;
      break;
    }
    default:
      break;
  }
  if (const std::string reason = WhyNotOffered(fault); !reason.empty()) line.Fail(reason);
  return [fault](ScriptRunner& runner) { runner.ItsSession().Host().faults.SpoilArgument(fault); };
}

ScriptAction ParseFailAlloc(ScriptLine& line) {
  const std::int32_t nth = line.WholeNumber("the number of an allocation", 1, kMostCount);
  const bool isOnce = line.IsAtEnd() || line.Choice({"once", "on"}) == 0;
  const auto failure = isOnce ? AllocationFailure::kOnce : AllocationFailure::kFromThenOn;
  return [nth, failure](ScriptRunner&) { AddinAllocations().Fail(nth, failure); };
}

ScriptAction ParseFail(ScriptLine& line) {
  const XlCallback& callback = line.Callback();
  const int code = CodeAt(line);
  const std::int32_t nth = line.IsAtEnd() ? 0 : line.WholeNumber("the number of the call", 1, kMostCount);
  return [&callback, code, nth](ScriptRunner& runner) { runner.ItsSession().Host().meter.Fail(callback, code, nth); };
}

ScriptAction ParseAnswerWith(ScriptLine& line) {
  const XlCallback& callback = line.Callback();
  if (line.StartsFormula())  // the first alone: what the formula calls may make such callbacks too
    return [&callback, formula = line.FormulaText()](ScriptRunner& runner) {
      runner.ItsSession().Host().meter.AnswerWith(callback, formula, 1);
    };
  const std::string_view word = line.Word("a kind of value");
  const std::optional<AnswerKind> kind = FindAnswerKind(word);
  if (!kind)
    line.FailIn(word, "expected a kind of value (" + AnswerKindNames() + "), found '" + std::string(word) + "'");
  const std::int32_t nth = line.IsAtEnd() ? 0 : line.WholeNumber("the number of the call", 1, kMostCount);
  return [&callback, kind = *kind, nth](ScriptRunner& runner) {
    runner.ItsSession().Host().meter.AnswerWith(callback, kind, nth);
  };
}

ScriptAction ParseFaultInCallback(ScriptLine& line) {
  const XlCallback& callback = line.Callback();
  if (!CanHandleFaults()) line.Fail("a host that handles its own fault is for the Windows build alone");
  return [&callback](ScriptRunner& runner) { runner.ItsSession().Host().meter.FaultIn(callback); };
}

ScriptAction ParseDoubleFree(ScriptLine&) {
  return [](ScriptRunner& runner) { runner.ItsSession().Host().faults.FreeTwice(); };
}

constexpr ScriptCommandForm kFaultCommands[] = {
    {"fail", "fail NAME CODE [NTH]", ParseFail},
    {"mutate", "mutate ARG null, type N, bits N, length N, dims RxC, pointer or nested", ParseMutate},
    {"fail-alloc", "fail-alloc N [once or on]", ParseFailAlloc},
    {"answer-with", "answer-with NAME KIND [NTH] or =FORMULA", ParseAnswerWith},
    {"fault-in-callback", "fault-in-callback NAME", ParseFaultInCallback},
    {"double-free", "double-free", ParseDoubleFree},
};

}  // namespace

std::span<const ScriptCommandForm> FaultCommands() { return kFaultCommands; }

}  // namespace qcalc
