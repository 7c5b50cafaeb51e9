#include "host/library/message_box.h"

#include "host/library/answers.h"

namespace qcalc {

int AnswerMessageBox(XStringView text, XStringView caption, std::uint32_t flags) {
  const std::uint32_t buttons = flags & kBoxButtons;
  const bool asksYesOrNo = buttons == kBoxYesNo || buttons == kBoxYesNoCancel;
  const bool isQuestion = asksYesOrNo || buttons == kBoxOkCancel;
  switch (ProcessAnswers().Take(XTEXT("message box"), text, caption, isQuestion)) {
    case Answer::kYes:
      return asksYesOrNo ? kBoxYes : kBoxOk;
    case Answer::kNo:
      return asksYesOrNo ? kBoxNo : isQuestion ? kBoxCancel : kBoxOk;
    case Answer::kOk:
      break;
  }
  return asksYesOrNo ? kBoxYes : kBoxOk;
}

}  // namespace qcalc
