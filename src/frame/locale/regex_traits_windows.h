// The library's own traits by the Windows API, which it drops on this compiler where nobody names them, for others that
// know no letters but the C locale's.
//
// As they come they ask Windows anew about each unit that is looked at, and keep what they share under locks and in
// static objects that outlive the library. The specialisations below read the same answers from tables of all units,
// filled once, and share nothing that is not given back.
#pragma once

#include <windows.h>

#include "frame/locale/regex_library.h"
#include "xlcall/xchar.h"

// Behind windows.h, which they would declare parts of otherwise.
#include <boost/regex/v5/w32_regex_traits.hpp>

namespace quillmere {

using RegexTraits = boost::w32_regex_traits<wchar_t>;

/// What Windows says of each unit; filled before the first traits are made.
struct UnitTables {
  static constexpr std::size_t kUnits = 0x10000;
  wchar_t lowerCase[kUnits];
  WORD types[kUnits];  ///< bits of CT_CTYPE1
};
extern UnitTables unitTables;

}  // namespace quillmere

namespace boost {

/// No catalogue of messages is ever named.
template <>
inline std::string w32_regex_traits<wchar_t>::get_catalog_name() {
  return {};
}

template <>
inline std::intmax_t w32_regex_traits<wchar_t>::toi(const wchar_t*& begin, const wchar_t* end, int radix) const {
  return std::min(BOOST_REGEX_DETAIL_NS::global_toi(begin, end, radix, *this), quillmere::kMostRegexNumber);
}

namespace BOOST_REGEX_DETAIL_NS {

template <>
inline wchar_t w32_regex_traits_char_layer<wchar_t>::tolower(wchar_t unit) const {
  return quillmere::unitTables.lowerCase[unit];
}

template <>
inline bool w32_regex_traits_char_layer<wchar_t>::isctype(std::uint32_t mask, wchar_t unit) const {
  return (quillmere::unitTables.types[unit] & mask) != 0;
}

/// The traits of a language, shared by the expressions that are compiled in it.
template <>
std::shared_ptr<const w32_regex_traits_implementation<wchar_t>> create_w32_regex_traits<wchar_t>(lcid_type language);

}  // namespace BOOST_REGEX_DETAIL_NS
}  // namespace boost
