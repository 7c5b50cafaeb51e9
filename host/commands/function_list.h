// What the add-in registered, in words.
#pragma once

#include <string>
#include <vector>

#include "host/addin/registry.h"
#include "host/commands/function_pages.h"

namespace qcalc {

/// A line for each, `NAME(Argument, ..., Argument)`, in the order of their help topics, by families with a title above
/// each and an empty line between; a function without a page stands under its category. Hidden functions and commands
/// stand at the end.
std::string ListByFamily(const std::vector<const RegisteredFunction*>& functions, const FunctionPages& pages);

/// `NAME(Argument, Argument, ...)`, then marks, description and of each argument how it is passed, its default, help
/// text and choices; then the page and the example.
std::string DescribeFully(const RegisteredFunction& function, const FunctionPages& pages);

}  // namespace qcalc
