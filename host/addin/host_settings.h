// What the host tells the add-in about itself, and what stands in for the macros of a real workbook.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "host/values/number_marks.h"
#include "host/values/value.h"

namespace qcalc {

struct HostSettings {
  XString version = XTEXT("16.0");
  NumberMarks marks;
  bool shortReferences = true;     ///< references to the current sheet go out as SRef, else as Ref with its id
  bool hasWorkbookMacros = false;  ///< xlUDF finds the host's own functions of the macro language (workbook_macros.h)
  bool watchesFolder = true;       ///< around each call of a function; asking the system is a tenth of a short one
  bool narrowCalls = false;        ///< functions that have an 8-bit entry point are called by that one
};

/// Functions of the macro language, reached through xlUDF.
struct MacroFunctions {
  std::map<XString, Value> results;   ///< what each returns, by name without case (FoldCase)
  std::optional<Value> lastArgument;  ///< the first argument of the last call
};

/// Servers of real-time data, reached through xlfRtd.
struct DataServers {
  std::map<XString, Value> answers;        ///< what each answers, by program id without case (FoldCase)
  std::vector<std::vector<Value>> topics;  ///< of the calls of servers that are there, in their order
};

}  // namespace qcalc
