// Natively the host stands in for the windows: it may export QcalcMessageBox.
#include <dlfcn.h>

#include <cstdint>

#include "frame/app/dialogs.h"

namespace quillmere {
namespace {

using HostMessageBox = int (*)(const XCHAR* text, const XCHAR* caption, std::uint32_t flags);

// Flags and answers of a Windows message box.
constexpr std::uint32_t kYesNo = 0x4;
constexpr std::uint32_t kIconExclamation = 0x30;
constexpr std::uint32_t kIconInformation = 0x40;
constexpr int kAnswerOk = 1;
constexpr int kAnswerYes = 6;

}  // namespace

bool ShowMessageBox(WindowHandle, const XString& text, const XString& caption, MessageBoxForm form) {
  const bool question = form == MessageBoxForm::kYesNoExclamation;
  const auto show = reinterpret_cast<HostMessageBox>(dlsym(RTLD_DEFAULT, "QcalcMessageBox"));
  if (!show) return !question;
  const int answer = show(text.c_str(), caption.c_str(), question ? kYesNo | kIconExclamation : kIconInformation);
  return answer == kAnswerYes || answer == kAnswerOk;
}

}  // namespace quillmere
