#include "host/dialogs/function_dialog.h"

namespace qcalc {

bool CanOpenDialogs() { return false; }

std::unique_ptr<IFunctionDialog> OpenFunctionDialog(DialogContents, std::int32_t, Complaints&) { return nullptr; }

}  // namespace qcalc
