// Formulas that come as texts from the add-in.
#pragma once

#include "host/addin/host_state.h"

namespace qcalc {

/// What a text gives as a formula of a macro sheet, with or without "=": references to the active sheet stand behind a
/// "!". A registered name alone gives its register id. #VALUE! for what is no formula or is longer than 255 units,
/// #NAME? for a bare reference or name. Throws as Evaluate.
Value EvaluateText(XStringView text, const HostState& host, const EvaluationContext& context);

}  // namespace qcalc
