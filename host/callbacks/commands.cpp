// Commands that the add-in may use as callbacks.
#include "host/callbacks/handlers.h"
#include "host/library/answers.h"

namespace qcalc {

CallbackAnswer HandleAlert(CallbackRequest& request) {
  constexpr int kQuestion = 1, kInformation = 2, kError = 3;
  const XString* text = request.TextAt(0);
  if (!text) return request.WrongArgument(1, "a text");
  const double kind = request.NumberAt(1).value_or(kInformation);
  if (kind != kQuestion && kind != kInformation && kind != kError) return request.WrongArgument(2, "1, 2 or 3");
  constexpr XStringView kKinds[] = {XTEXT("alert (question)"), XTEXT("alert"), XTEXT("alert (error)")};
  const bool isQuestion = kind == kQuestion;
  const Answer answer = ProcessAnswers().Take(kKinds[static_cast<int>(kind) - 1], *text, {}, isQuestion);
  return Value::Boolean(!isQuestion || answer != Answer::kNo);
}

CallbackAnswer HandleMessage(CallbackRequest& request) {
  const auto isShown = request.BooleanAt(0);
  if (!isShown) return request.WrongArgument(1, "a boolean");
  if (*isShown && !request.TextAt(1)) return request.WrongArgument(2, "a text");
  return Value::Boolean(true);
}

CallbackAnswer HandleEcho(CallbackRequest& request) {
  if (!request.IsOmitted(0) && !request.BooleanAt(0)) return request.WrongArgument(1, "a boolean");
  return Value::Boolean(true);
}

}  // namespace qcalc
