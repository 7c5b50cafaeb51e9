// Windows' own dialogs.
#pragma once

#include "frame/callbacks/excel_window.h"
#include "xlcall/xchar.h"

namespace quillmere {

enum class MessageBoxForm {
  kInformation,       ///< OK, with the information icon
  kYesNoExclamation,  ///< Yes and No, with the exclamation icon
};

/// Shows a message box owned by `owner` and waits for the answer: true for OK and Yes. Where no box can be shown, a
/// question counts as answered by No.
bool ShowMessageBox(WindowHandle owner, const XString& text, const XString& caption, MessageBoxForm form);

}  // namespace quillmere
