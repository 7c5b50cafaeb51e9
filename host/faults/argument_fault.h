// Damage to the arguments of a call: what a broken caller, or a bug of the add-in's own, would hand over.
#pragma once

#include <cstdint>
#include <string>

namespace qcalc {

enum class ArgumentFaultKind {
  kNull,     ///< a null pointer in place of the value
  kType,     ///< xltype is `number`; the rest of the value stays
  kBits,     ///< the bits of `number` are added to xltype
  kLength,   ///< the text, or the first text of the array, says that it has `number` units
  kDims,     ///< the array says that it has `rows` and `columns`
  kPointer,  ///< a text at an address where no memory is
  kNested,   ///< the array's first element is an array; what is no array becomes one
};

/// How one argument is spoilt. What hangs on a value whose length or size lies ends where no memory follows, so that
/// reading past it is a fault of the processor at once.
struct ArgumentFault {
  int argument = 1;  ///< 1-based
  ArgumentFaultKind kind = ArgumentFaultKind::kNull;
  std::int64_t number = 0;
  std::int32_t rows = 0;
  std::int32_t columns = 0;
};

/// Why this build does not offer the damage; empty when it does. Natively nothing may fault the processor: lying
/// lengths and sizes, bad pointers, and types that make a pointer of something else are for Windows.
std::string WhyNotOffered(const ArgumentFault& fault);

}  // namespace qcalc
