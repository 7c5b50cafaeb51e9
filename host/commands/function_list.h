// What the add-in registered, in words.
#pragma once

#include <string>
#include <vector>

#include "host/addin/registry.h"

namespace qcalc {

/// A line for each, `NAME(Argument, ..., Argument)`, by families with a title above each and an empty line between. The
/// functions of a category whose help topics lie in the same hundred are a family; hidden functions and commands stand
/// at the end.
std::string ListByFamily(const std::vector<const RegisteredFunction*>& functions);

/// `NAME(Argument, Argument, ...)`, then marks, description and of each argument how it is passed and its help text.
std::string DescribeFully(const RegisteredFunction& function);

}  // namespace qcalc
