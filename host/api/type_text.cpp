#include "host/api/type_text.h"

#include <algorithm>
#include <string_view>

#include "xlcall/xlcall.h"

namespace qcalc {
namespace {

constexpr std::string_view kArgumentLetters = "ABCDEFGHIJKLMNOPQRUX";
constexpr std::string_view kWideLetters = "CDFGKO";
constexpr std::string_view kMarks = "!#$&";
// Argument letters that can stand before the result in place of a letter: the argument is changed in place.
constexpr std::string_view kInPlace = "123456789";

std::string Quoted(char character) { return std::string("'") + character + "'"; }

bool SetMark(TypeText& type, char mark) {
  bool& flag = mark == '!'   ? type.isVolatile
               : mark == '#' ? type.isMacroEquivalent
               : mark == '$' ? type.isThreadSafe
                             : type.isClusterSafe;
  if (flag) return false;
  return flag = true;
}

}  // namespace

bool TypeText::TakesReferences() const {
  return std::any_of(arguments.begin(), arguments.end(), [](TypeLetter argument) { return argument.MayBeReference(); });
}

std::variant<TypeText, std::string> ParseTypeText(XStringView units) {
  std::string text;
  for (const XCHAR unit : units) text.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  if (text.empty()) return "the type text is empty";
  TypeText type;
  std::size_t next = 0;
  const auto readLetter = [&](TypeLetter& letter) {
    letter.letter = text[next++];
    letter.isWide = next < text.size() && text[next] == '%';
    if (letter.isWide) ++next;
    return !letter.isWide || kWideLetters.find(letter.letter) != std::string_view::npos;
  };
  if (text[0] != '>' && kInPlace.find(text[0]) == std::string_view::npos &&
      kArgumentLetters.find(text[0]) == std::string_view::npos)
    return "the return letter " + Quoted(text[0]) + " is none";
  if (!readLetter(type.result)) return "the return letter takes no '%'";
  while (next < text.size() && kMarks.find(text[next]) == std::string_view::npos) {
    if (kArgumentLetters.find(text[next]) == std::string_view::npos)
      return "the letter " + Quoted(text[next]) + " is none";
    if (!readLetter(type.arguments.emplace_back())) return "the letter " + Quoted(text[next - 2]) + " takes no '%'";
  }
  for (; next < text.size(); ++next) {
    if (kMarks.find(text[next]) == std::string_view::npos)
      return "the letter " + Quoted(text[next]) + " stands behind a mark";
    if (!SetMark(type, text[next])) return "the mark " + Quoted(text[next]) + " stands twice";
  }
  if (type.isMacroEquivalent && type.isThreadSafe) return "the marks '#' and '$' exclude each other";
  if (type.isMacroEquivalent && type.isClusterSafe) return "the marks '#' and '&' exclude each other";
  if (type.arguments.size() > kXlMaxArguments)
    return "there are more than " + std::to_string(kXlMaxArguments) + " arguments";
  if (const auto place = kInPlace.find(type.result.letter); place != std::string_view::npos) {
    if (place >= type.arguments.size()) return "the argument to change in place is not there";
    if (std::string_view("PQRU").find(type.arguments[place].letter) != std::string_view::npos)
      return "an argument of P, Q, R or U cannot be changed in place";
  }
  return type;
}

Passing PassingOf(TypeLetter letter) {
  switch (letter.letter) {
    case 'Q':
    case 'U':
      return Passing::kOper12;
    case 'P':
    case 'R':
      return Passing::kOper;
    case 'C':
    case 'D':
      return Passing::kText;
    case 'K':
      return Passing::kMatrix;
    default:
      return Passing::kInteger;
  }
}

TypeLetter NarrowLetter(TypeLetter letter) {
  switch (letter.letter) {
    case 'Q':
      return {'P'};
    case 'U':
      return {'R'};
    default:
      return {letter.letter};
  }
}

bool IsOfferedArgument(TypeLetter letter) {
  return letter.isWide ? std::string_view("CDK").find(letter.letter) != std::string_view::npos
                       : std::string_view("ACDHIJPQRU").find(letter.letter) != std::string_view::npos;
}

bool IsOfferedResult(TypeLetter letter) {
  return !letter.isWide && std::string_view("AHIJPQRU").find(letter.letter) != std::string_view::npos;
}

}  // namespace qcalc
