// Conversion of values between the types of the C API.
#pragma once

#include <cstdint>
#include <optional>

#include "host/api/api_value.h"
#include "host/values/number_marks.h"

namespace qcalc {

/// The value as xlCoerce gives it for a mask of types, conversions of one value included; nothing when Excel would
/// fail. `mask` 0 stands for none. References must be read before.
std::optional<ApiValue> CoerceValue(const ApiValue& source, std::uint32_t mask, NumberMarks marks);

}  // namespace qcalc
