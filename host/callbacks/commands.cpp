// Commands that the add-in may use as callbacks.
#include "host/callbacks/handlers.h"
#include "host/library/answers.h"
#include "host/objects/object_model.h"
#include "host/text/utf8.h"

namespace qcalc {

CallbackAnswer HandleAlert(CallbackRequest& request) {
  constexpr int kQuestion = 1, kInformation = 2, kError = 3;
  const XString* text = request.TextAt(0);
  if (!text) return request.WrongArgument(1, "a text");
  const double kind = request.NumberAt(1).value_or(kInformation);
  if (kind != kQuestion && kind != kInformation && kind != kError) return request.WrongArgument(2, "1, 2 or 3");
  constexpr XStringView kTitles[] = {XTEXT("alert (question)"), XTEXT("alert"), XTEXT("alert (error)")};
  const bool isQuestion = kind == kQuestion;
  const Answer answer = ProcessAnswers().Take(kTitles[static_cast<int>(kind) - 1], *text, {}, isQuestion);
  return Value::Boolean(!isQuestion || answer != Answer::kNo);
}

CallbackAnswer HandleMessage(CallbackRequest& request) {
  const auto isShown = request.BooleanAt(0);
  if (!isShown) return request.WrongArgument(1, "a boolean");
  if (*isShown && !request.TextAt(1)) return request.WrongArgument(2, "a text");
  return Value::Boolean(true);
}

CallbackAnswer HandleEcho(CallbackRequest& request) {
  const auto isOn = request.BooleanAt(0);
  if (!request.IsOmitted(0) && !isOn) return request.WrongArgument(1, "a boolean");
  ApplicationState& application = request.Host().application;
  application.SetEcho(isOn.value_or(!application.Echo()));
  return Value::Boolean(true);
}

CallbackAnswer HandleNew(CallbackRequest& request) {
  constexpr double kWorksheet = 1, kWorkbook = 5;
  const auto kind = request.NumberAt(0);
  if (!request.IsOmitted(0) && kind != kWorksheet && kind != kWorkbook)
    return request.NotOffered("a new file of that kind");
  HostState& host = request.Host();
  int number = 1;
  XString name;
  do {
    name = *FromUtf8("Book" + std::to_string(++number));
  } while (host.workbooks.FindBook(name));
  host.workbooks.BookNamed(name).SheetNamed(XTEXT("Sheet1"));
  host.newBooks.push_back(std::move(name));
  host.objects->AllowBookWindows();
  return Value::Boolean(true);
}

CallbackAnswer HandleFileClose(CallbackRequest& request) {
  const auto saves = request.BooleanAt(0);
  if (!request.IsOmitted(0) && !saves) return request.WrongArgument(1, "a boolean");
  HostState& host = request.Host();
  if (host.newBooks.empty()) {
    request.Complain("would have closed a book that the add-in did not make");
    return CallbackAnswer::Failure(xlretFailed);
  }
  if (saves.value_or(true)) {
    request.Complain("would have asked whether and where to save the book");
    return CallbackAnswer::Failure(xlretFailed);
  }
  if (const Book* const book = host.workbooks.FindBook(host.newBooks.back())) host.workbooks.Close(*book);
  host.newBooks.pop_back();
  host.objects->ShowBooks();
  return Value::Boolean(true);
}

}  // namespace qcalc
