#include <windows.h>

#include "frame/app/dialogs.h"

namespace quillmere {

bool ShowMessageBox(WindowHandle owner, const XString& text, const XString& caption, MessageBoxForm form) {
  const UINT flags =
      form == MessageBoxForm::kYesNoExclamation ? MB_YESNO | MB_ICONEXCLAMATION : MB_OK | MB_ICONINFORMATION;
  const int answer = MessageBoxW(reinterpret_cast<HWND>(owner), text.c_str(), caption.c_str(), flags);
  return answer == IDYES || answer == IDOK;
}

}  // namespace quillmere
