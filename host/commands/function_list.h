// What the add-in registered, in words.
#pragma once

#include <string>

#include "host/addin/registry.h"

namespace qcalc {

/// `NAME(Argument, Argument, ...)`, without a line break.
std::string DescribeBriefly(const RegisteredFunction& function);

/// The same, then marks, description and the arguments' help texts, one a line.
std::string DescribeFully(const RegisteredFunction& function);

}  // namespace qcalc
