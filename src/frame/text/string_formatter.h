// Placeholder formatting of texts: {0}, {1}, ... with "{{" and "}}" for the braces themselves.
#pragma once

#include <concepts>
#include <cstddef>
#include <exception>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "frame/text/integer_text.h"
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
  noexcept : digits_(number) {}

  View Text() const noexcept { return digits_ ? digits_->View() : text_; }

 private:
  View text_;
  std::optional<BasicIntegerText<Char>> digits_;
};

using FormatArgument = BasicFormatArgument<XCHAR>;
using FormatArgument8 = BasicFormatArgument<char>;

/// Replaces each {n} of `pattern` by the n-th argument, counted from 0. Braces inside an argument stand for themselves.
/// Raises StringFormatterError.
XString Format(XStringView pattern, std::initializer_list<FormatArgument> arguments);
/// The same for 8-bit text.
std::string Format(std::string_view pattern, std::initializer_list<FormatArgument8> arguments);

}  // namespace quillmere::psl
