// Any text as a literal: what was read prints as a literal that reads as the same value.
#include <cstdint>
#include <cstdlib>

#include "host/values/literal.h"
#include "host/values/value_order.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = qcalc::ParseLiteral({reinterpret_cast<const char*>(data), size});
  if (!value) return 0;
  const auto again = qcalc::ParseLiteral(qcalc::PrintLiteral(*value));
  if (!again || !qcalc::SameValue(*value, *again)) std::abort();
  return 0;
}
