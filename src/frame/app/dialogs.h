// Windows' own dialogs and what else is asked of the system on a user's behalf.
#pragma once

#include <cstdint>

#include "xlcall/xchar.h"

namespace quillmere {

/// A window handle as Excel hands it out; 0: none.
using WindowHandle = std::intptr_t;

enum class MessageBoxForm {
  kInformation,       ///< OK, with the information icon
  kYesNoExclamation,  ///< Yes and No, with the exclamation icon
};

/// Shows a message box owned by `owner` and waits for the answer: true for OK and Yes. Where no box can be shown, a
/// question counts as answered by No.
bool ShowMessageBox(WindowHandle owner, const XString& text, const XString& caption, MessageBoxForm form);

/// The binary type that Windows reports for an executable file (0: 32-bit Windows, 6: 64-bit Windows, ...), or -1 when
/// it is none. `path` is in the ANSI code page.
std::int32_t BinaryTypeOf(const char* path);

}  // namespace quillmere
