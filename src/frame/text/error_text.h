// The texts of Excel's error values.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "xlcall/xchar.h"

namespace quillmere {

/// The text of an error code ("#N/A"); "Unknown" for a code without one.
XStringView ErrorText(std::int32_t code) noexcept;
/// The same as 8-bit text.
std::string_view ErrorText8(std::int32_t code) noexcept;

/// The code of an error's text, letters of either case; nothing when it is not one.
std::optional<std::int32_t> ErrorCodeOf(XStringView text);

}  // namespace quillmere
