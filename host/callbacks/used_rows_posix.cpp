// Natively there is no object model to ask for a sheet's used range: the add-in finds this among the program's exports
// instead, as it finds the callback.
#include "host/addin/call_context.h"
#include "host/addin/host_state.h"
#include "host/library/allocation.h"
#include "host/library/export.h"

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// Writes the first and last used row (0-based) of the sheet of that id, 0 being the current one of this thread's call.
/// False when the sheet has none, or there is no such sheet.
QCALC_EXPORT bool QcalcUsedRows(IDSHEET id, std::int32_t* first, std::int32_t* last) {
  const qcalc::RunningCode running(qcalc::RunningCode::Owner::kHost);
  const qcalc::CallContext* const context = qcalc::CallContext::Current();
  if (!context) return false;
  const qcalc::Sheet* const sheet = id == 0 ? context->evaluation.sheet : context->host.workbooks.FindSheet(id);
  const auto used = sheet ? sheet->UsedArea() : std::nullopt;
  if (!used) return false;
  *first = used->firstRow;
  *last = used->lastRow;
  return true;
}
