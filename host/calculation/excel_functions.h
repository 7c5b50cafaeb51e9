// The names of Excel's worksheet functions.
#pragma once

#include <span>

#include "xlcall/xchar.h"

namespace qcalc {

struct ExcelFunction {
  XString name;  ///< the English one, in capitals
  /// Built into Excel before 2007. Nothing else may be registered by such a name; by a newer one it may. The functions
  /// of the Analysis ToolPak are newer: until 2007 they were an add-in's.
  bool isBefore2007 = false;
};

/// All of them in the order of their names.
std::span<const ExcelFunction> ExcelFunctions();

/// The function of that name, in any case; null when Excel has none.
const ExcelFunction* FindExcelFunction(XStringView name);

}  // namespace qcalc
