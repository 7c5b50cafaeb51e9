// Whole numbers in digits.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace qcalc {

template <typename Unit>
constexpr bool IsDigit(Unit unit) {
  return unit >= '0' && unit <= '9';
}

/// The number that the text as a whole is, perhaps behind a minus sign; nothing when it is none, or beyond `Number`.
template <typename Number>
std::optional<Number> ReadWhole(std::string_view text, int base = 10) {
  Number number{};
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return fault == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

}  // namespace qcalc
