#include "excel/com/macro_text_windows.h"

#include "excel/com/late_bound_windows.h"

namespace quillmere {
namespace {

constexpr const XCHAR* kDisplayAlerts = XTEXT("DisplayAlerts");

ComOutcome SetAlerts(IDispatch& application, bool on) noexcept {
  return PutProperty(application, kDisplayAlerts, ComVariant(on).Raw(), WhenBusy::kWait);
}

}  // namespace

HRESULT RunMacroText(IDispatch& application, XStringView macro, ComVariant& result) noexcept {
  ComVariant alerts;
  if (const ComOutcome read = GetProperty(application, kDisplayAlerts, alerts, WhenBusy::kWait); !read)
    return read.result;
  if (const HRESULT changed = VariantChangeType(&alerts.Raw(), &alerts.Raw(), 0, VT_BOOL); FAILED(changed))
    return changed;
  const bool wereOn = alerts.Raw().boolVal != VARIANT_FALSE;
  if (wereOn) {
    if (const ComOutcome off = SetAlerts(application, false); !off) return off.result;
  }
  const HRESULT ran = CallWithText(application, XTEXT("ExecuteExcel4Macro"), macro, result, WhenBusy::kWait).result;
  // Without alerts Excel overwrites and closes unasked, so one refusal is not taken for an answer.
  if (wereOn && !MeansVanished(ran) && !SetAlerts(application, true)) SetAlerts(application, true);
  return ran;
}

}  // namespace quillmere
