// Traits for 16-bit characters, which the library has none of here, with the answers that its traits by the Windows API
// give there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "frame/locale/regex_library.h"
#include "frame/text/lower_case.h"
#include "frame/text/upper_case.h"
#include "xlcall/xchar.h"

namespace quillmere {

class RegexTraits {
 public:
  using char_type = XCHAR;
  using size_type = std::size_t;
  using string_type = XString;
  using locale_type = int;                ///< there is one alone
  using char_class_type = std::uint32_t;  ///< bits of Windows' character types, and of the library's own classes
  struct boost_extensions_tag {};

  static size_type length(const XCHAR* text) { return std::char_traits<XCHAR>::length(text); }
  boost::regex_constants::syntax_type syntax_type(XCHAR unit) const;
  boost::regex_constants::escape_syntax_type escape_syntax_type(XCHAR unit) const;
  XCHAR translate(XCHAR unit) const { return unit; }
  XCHAR translate_nocase(XCHAR unit) const { return LowerCase(unit); }
  XCHAR translate(XCHAR unit, bool anyCase) const { return anyCase ? LowerCase(unit) : unit; }
  XCHAR tolower(XCHAR unit) const { return LowerCase(unit); }
  XCHAR toupper(XCHAR unit) const { return UpperCase(unit); }
  string_type transform(const XCHAR* begin, const XCHAR* end) const;
  string_type transform_primary(const XCHAR* begin, const XCHAR* end) const;
  char_class_type lookup_classname(const XCHAR* begin, const XCHAR* end) const;
  string_type lookup_collatename(const XCHAR* begin, const XCHAR* end) const;
  bool isctype(XCHAR unit, char_class_type classes) const;
  std::intmax_t toi(const XCHAR*& begin, const XCHAR* end, int radix) const;
  int value(XCHAR unit, int radix) const;
  locale_type imbue(locale_type) { return 0; }
  locale_type getloc() const { return 0; }
  std::string error_string(boost::regex_constants::error_type error) const;
};

}  // namespace quillmere
