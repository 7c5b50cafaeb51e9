// Integers as decimal digits.
#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <string_view>

#include "xlcall/xchar.h"

namespace quillmere {

/// The digits of an integer, with a minus sign before them where it is negative. Allocates nothing.
template <class Char>
class BasicIntegerText {
 public:
  template <std::integral Integer>
  explicit BasicIntegerText(Integer number) noexcept {
    char ascii[kMostUnits];
    const char* const end = std::to_chars(ascii, ascii + kMostUnits, number).ptr;
    for (const char* digit = ascii; digit != end; ++digit) units_[count_++] = static_cast<Char>(*digit);
  }

  /// The digits, viewed here.
  std::basic_string_view<Char> View() const noexcept { return {units_, count_}; }

 private:
  static constexpr std::size_t kMostUnits = 24;

  Char units_[kMostUnits] = {};
  std::size_t count_ = 0;
};

using IntegerText = BasicIntegerText<XCHAR>;

}  // namespace quillmere
