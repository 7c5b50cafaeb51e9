// Calls an export whose arguments are pointers and integers, however many there are.
#pragma once

#include <cstdint>
#include <span>

#include "host/library/allocation.h"
#include "host/process/last_words.h"

namespace qcalc {

/// Calls `entry` with one machine word for each argument, at most kXlMaxArguments, and returns the result's register.
/// Words behind the last argument may reach the stack too; the callee does not look at them.
std::uintptr_t Invoke(void* entry, std::span<const std::uintptr_t> words);

/// Runs `code`, which is the add-in's. An exception that leaves it ends the process, as it ends Excel.
template <typename Code>
auto RunAddinCode(Code code) {
  const RunningCode running(RunningCode::Owner::kAddin);
  try {
    return code();
  } catch (...) {
    EndWithLastWords();
  }
}

}  // namespace qcalc
