// Memory that the add-in hands over, looked at before the host reads it.
#pragma once

#include <string>

#include "host/api/loans.h"
#include "host/api/marshal.h"

namespace qcalc {

/// Why the memory that hangs on a value must not be read, in words that go on from "returned": it has been given back
/// to the host, or its block is shorter than the value says. Empty when it may be, as far as is known of its block.
template <typename Width>
std::string DefectOfMemory(const typename Width::Oper& oper, const Loans& loans);

/// Whether an array of the add-in's own holds a text that is on loan from the host; of a long one the first few
/// thousand elements tell.
template <typename Width>
bool HoldsLentText(const typename Width::Oper& oper, const Loans& loans);

}  // namespace qcalc
