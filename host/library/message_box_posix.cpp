#include "host/library/allocation.h"
#include "host/library/export.h"
#include "host/library/message_box.h"

namespace qcalc {

// The native add-in looks up the export below where the Windows one calls the system: nothing is to be changed in it.
void RedirectMessageBoxes(const Library&) {}

}  // namespace qcalc

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// What the native add-in finds by name in the program and calls for MessageBox: zero-terminated texts, Windows' flags
/// and answers.
QCALC_EXPORT int QcalcMessageBox(const XCHAR* text, const XCHAR* caption, std::uint32_t flags) {
  const qcalc::RunningCode running(qcalc::RunningCode::Owner::kHost);
  return qcalc::AnswerMessageBox(text ? XStringView(text) : XStringView(),
                                 caption ? XStringView(caption) : XStringView(), flags);
}
