// Calls an export whose arguments are pointers and integers, however many there are.
#pragma once

#include <cstdint>
#include <span>

namespace qcalc {

/// Calls `entry` with one machine word for each argument, at most kXlMaxArguments, and returns the result's register.
/// Words behind the last argument may reach the stack too; the callee does not look at them.
std::uintptr_t Invoke(void* entry, std::span<const std::uintptr_t> words);

}  // namespace qcalc
