// The system's message boxes, which the add-in shows itself, brought to ProcessAnswers.
#pragma once

#include <cstdint>

#include "host/library/library.h"
#include "xlcall/xchar.h"

namespace qcalc {

/// Buttons and answers as Windows numbers them.
enum : std::uint32_t {
  kBoxButtons = 0x0F,
  kBoxYesNo = 4,
  kBoxYesNoCancel = 3,
  kBoxOkCancel = 1,
};
enum : int { kBoxOk = 1, kBoxCancel = 2, kBoxYes = 6, kBoxNo = 7 };

/// Takes the answer to a message box with those flags (MB_...), as the number that MessageBox returns.
int AnswerMessageBox(XStringView text, XStringView caption, std::uint32_t flags);

/// Makes the message boxes of a library come here. To be called before any of its code shows one.
void RedirectMessageBoxes(const Library& library);

}  // namespace qcalc
