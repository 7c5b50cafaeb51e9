// Placeholder formatting of texts: {0}, {1}, ... with "{{" and "}}" for the braces themselves.
#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <exception>
#include <initializer_list>
#include <string>
#include <string_view>

#include "xlcall/xchar.h"

namespace quillmere::psl {

/// Why a pattern was refused.
enum class FormatFault : int {
  kUnbalancedBrace = -2,  ///< "{" that is not closed or holds another "{", or a single "}"
  kBadIndex = -3,         ///< "{}", or anything but decimal digits between the braces
  kIndexOutOfRange = -4,  ///< an index above 65,535, or one without an argument
};

/// A pattern that cannot be formatted; what() is "Error in string format".
class StringFormatterError : public std::exception {
 public:
  explicit StringFormatterError(FormatFault fault) noexcept : fault_(fault) {}
  const char* what() const noexcept override { return "Error in string format"; }
  FormatFault Fault() const noexcept { return fault_; }

 private:
  FormatFault fault_;
};

/// One argument of Format: a text, viewed and not copied, or an integer, held as its decimal digits.
template <class Char>
class BasicFormatArgument {
 public:
  using View = std::basic_string_view<Char>;

  BasicFormatArgument(View text) noexcept : text_(text) {}
  BasicFormatArgument(const Char* text) noexcept : text_(text) {}
  BasicFormatArgument(const std::basic_string<Char>& text) noexcept : text_(text) {}
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool> && !std::same_as<Integer, Char>) BasicFormatArgument(Integer number)
  noexcept {
    char ascii[kDigits];
    const char* const end = std::to_chars(ascii, ascii + kDigits, number).ptr;
    for (const char* digit = ascii; digit != end; ++digit) digits_[digitCount_++] = static_cast<Char>(*digit);
  }

  View Text() const noexcept { return digitCount_ != 0 ? View(digits_, digitCount_) : text_; }

 private:
  static constexpr std::size_t kDigits = 24;

  View text_;
  Char digits_[kDigits] = {};
  std::size_t digitCount_ = 0;
};

using FormatArgument = BasicFormatArgument<XCHAR>;
using FormatArgument8 = BasicFormatArgument<char>;

/// Replaces each {n} of `pattern` by the n-th argument, counted from 0. Braces inside an argument stand for themselves.
/// Raises StringFormatterError.
XString Format(XStringView pattern, std::initializer_list<FormatArgument> arguments);
/// The same for 8-bit text.
std::string Format(std::string_view pattern, std::initializer_list<FormatArgument8> arguments);

}  // namespace quillmere::psl
