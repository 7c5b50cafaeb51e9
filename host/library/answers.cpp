#include "host/library/answers.h"

#include <iostream>
#include <string>

#include "host/text/shown_text.h"
#include "host/text/utf8.h"

namespace qcalc {

void Answers::Reset() {
  const std::lock_guard lock(mutex_);
  next_.reset();
}

void Answers::SetNext(Answer answer) {
  const std::lock_guard lock(mutex_);
  next_ = answer;
}

Answer Answers::Take(XStringView kind, XStringView text, XStringView caption, bool isQuestion) {
  const std::lock_guard lock(mutex_);
  const Answer answer = next_.value_or(isQuestion ? Answer::kNo : Answer::kOk);
  next_.reset();
  std::string printed = ToUtf8(kind);
  if (!caption.empty()) printed += " \"" + ToUtf8(caption) + "\"";
  const char* word = answer == Answer::kYes ? "yes" : answer == Answer::kNo ? "no" : "ok";
  std::cerr << ShownMessage(printed + ": " + ToUtf8(text)) << "\n  answered: " << word << std::endl;
  return answer;
}

Answers& ProcessAnswers() {
  static Answers answers;
  return answers;
}

}  // namespace qcalc
