#include "frame/locale/regex_traits_posix.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

#include "frame/locale/collation.h"

namespace quillmere {
namespace {

namespace library = boost::BOOST_REGEX_DETAIL_NS;
namespace constants = boost::regex_constants;

/// Windows' bits for the types of characters.
enum : std::uint32_t {
  kUpper = 0x001,
  kLower = 0x002,
  kDigit = 0x004,
  kSpace = 0x008,
  kPunct = 0x010,
  kControl = 0x020,
  kBlank = 0x040,
  kHexDigit = 0x080,
  kAlpha = 0x100,
  kTypes = 0x1FF,
  // Beyond those, classes of the library's.
  kWord = 0x0400,
  kUnicode = 0x0800,
  kHorizontal = 0x1000,
  kVertical = 0x2000,
};

/// Of the library's names of classes, in its order, behind none.
constexpr std::uint32_t kClasses[] = {
    0,
    kAlpha | kDigit,
    kAlpha,
    kBlank,
    kControl,
    kDigit,
    kDigit,
    (kTypes & ~(kControl | kSpace | kBlank)) | kWord,  // graph
    kHorizontal,
    kLower,
    kLower,
    (kTypes & ~kControl) | kWord,  // print
    kPunct,
    kSpace,
    kSpace,
    kUpper,
    kUnicode,
    kUpper,
    kVertical,
    kAlpha | kDigit | kWord,
    kAlpha | kDigit | kWord,
    kHexDigit,
};

bool IsOneOf(XCHAR unit, XStringView units) { return units.find(unit) != XStringView::npos; }

/// What all characters of a category are to Windows.
std::uint32_t TypesOfCategory(XCHAR unit) {
  switch (u_charType(unit)) {
    case U_UPPERCASE_LETTER:
      return kAlpha | kUpper;
    case U_LOWERCASE_LETTER:
      return kAlpha | kLower;
    case U_TITLECASE_LETTER:
      return kAlpha | kUpper | kLower;
    case U_MODIFIER_LETTER:
    case U_OTHER_LETTER:
    case U_LETTER_NUMBER:
      return kAlpha;
    case U_DECIMAL_DIGIT_NUMBER:
      return kDigit;
    case U_SPACE_SEPARATOR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
      return kSpace;
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
      return kControl;
    case U_DASH_PUNCTUATION:
    case U_START_PUNCTUATION:
    case U_END_PUNCTUATION:
    case U_CONNECTOR_PUNCTUATION:
    case U_OTHER_PUNCTUATION:
    case U_INITIAL_PUNCTUATION:
    case U_FINAL_PUNCTUATION:
      return kPunct;
    case U_MATH_SYMBOL:
    case U_CURRENCY_SYMBOL:
    case U_MODIFIER_SYMBOL:
    case U_OTHER_SYMBOL:
      return unit < 0x100 ? std::uint32_t{kPunct} : 0;
    default:
      return 0;
  }
}

/// What Windows says of a unit.
std::uint32_t TypesOf(XCHAR unit) {
  std::uint32_t types = TypesOfCategory(unit);
  // A full-width unit is a hexadecimal digit where its ASCII counterpart is one.
  const UChar32 narrow = unit >= 0xFF01 && unit <= 0xFF5E ? unit - 0xFEE0 : unit;
  if (narrow < 0x80 && u_isxdigit(narrow)) types |= kHexDigit;
  if (IsOneOf(unit, XTEXT("\t\n\v\f\r\u0085"))) types |= kSpace;
  if (IsOneOf(unit, XTEXT("\t \u00A0\u3000\uFEFF"))) types |= kBlank;
  if (IsOneOf(unit, XTEXT("\u00AA\u00BA\u2071\u207F"))) types |= kLower;
  if (IsOneOf(unit, XTEXT("\u00AA\u00AD\u00B2\u00B3\u00B5\u00B9\u00BA\u00BC\u00BD\u00BE"))) types |= kPunct;
  if (IsOneOf(unit, XTEXT("\u00B2\u00B3\u00B9"))) types |= kDigit;
  return types;
}

std::uint32_t ClassOfName(const XCHAR* begin, const XCHAR* end) {
  return kClasses[1 + library::get_default_class_id(begin, end)];
}

XString UnitsOf(const std::string& bytes) {
  XString units(bytes.size(), XCHAR{});
  std::transform(bytes.begin(), bytes.end(), units.begin(),
                 [](char byte) { return static_cast<XCHAR>(static_cast<unsigned char>(byte)); });
  return units;
}

}  // namespace

constants::syntax_type RegexTraits::syntax_type(XCHAR unit) const {
  static const std::array types = [] {
    std::array<constants::syntax_type, 0x80> made{};
    for (constants::syntax_type type = 1; type < constants::syntax_max; ++type)
      for (const char* each = library::get_default_syntax(type); *each != '\0'; ++each)
        made[static_cast<unsigned char>(*each)] = type;
    return made;
  }();
  return unit < types.size() ? types[unit] : 0;
}

constants::escape_syntax_type RegexTraits::escape_syntax_type(XCHAR unit) const {
  if (const constants::syntax_type type = syntax_type(unit)) return type;
  const std::uint32_t types = TypesOf(unit);
  if (types & kLower) return constants::escape_type_class;
  if (types & kUpper) return constants::escape_type_not_class;
  return 0;
}

XString RegexTraits::transform(const XCHAR* begin, const XCHAR* end) const {
  return UnitsOf(CollationKey({begin, end}, LetterCase::kCounts));
}

XString RegexTraits::transform_primary(const XCHAR* begin, const XCHAR* end) const {
  // Levels are parted by the byte 1: the letters alone, then their accents.
  const std::string key = CollationKey({begin, end}, LetterCase::kIgnored);
  const XString primary = UnitsOf(key.substr(0, key.find('\1')));
  return primary.empty() ? XString(1, XCHAR{}) : primary;
}

RegexTraits::char_class_type RegexTraits::lookup_classname(const XCHAR* begin, const XCHAR* end) const {
  if (const char_class_type found = ClassOfName(begin, end)) return found;
  XString name(begin, end);
  std::transform(name.begin(), name.end(), name.begin(), LowerCase);
  return ClassOfName(name.data(), name.data() + name.size());
}

XString RegexTraits::lookup_collatename(const XCHAR* begin, const XCHAR* end) const {
  const std::string found = library::lookup_default_collate_name(std::string(begin, end));
  if (!found.empty()) return XString(found.begin(), found.end());
  return end - begin == 1 ? XString(1, *begin) : XString();
}

bool RegexTraits::isctype(XCHAR unit, char_class_type classes) const {
  const auto isVertical = [unit] { return library::is_separator(unit) || unit == XTEXT('\v'); };
  const std::uint32_t types = TypesOf(unit);
  return (types & classes & kTypes) != 0 || (classes & kUnicode && library::is_extended(unit)) ||
         (classes & kWord && unit == XTEXT('_')) || (classes & kVertical && isVertical()) ||
         (classes & kHorizontal && types & kSpace && !isVertical());
}

std::intmax_t RegexTraits::toi(const XCHAR*& begin, const XCHAR* end, int radix) const {
  return std::min(library::global_toi(begin, end, radix, *this), kMostRegexNumber);
}

int RegexTraits::value(XCHAR unit, int radix) const {
  const int digit = library::global_value(unit);
  return digit < radix ? digit : -1;
}

std::string RegexTraits::error_string(constants::error_type error) const {
  return library::get_default_error_string(error);
}

}  // namespace quillmere
