#include "host/formats/format_scanner.h"

#include <algorithm>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/values/number_reading.h"

namespace qcalc {

namespace {

using TokenKind = FormatToken::Kind;

void AddLiteral(FormatSection& section, XStringView text) {
  section.tokens.push_back({TokenKind::kLiteral, XString(text)});
}

bool IsColor(XStringView inside) {
  for (const XStringView color : {XTEXT("black"), XTEXT("blue"), XTEXT("cyan"), XTEXT("green"), XTEXT("magenta"),
                                  XTEXT("red"), XTEXT("white"), XTEXT("yellow")})
    if (EqualsIgnoringCase(inside, color)) return true;
  constexpr XStringView kNumbered = XTEXT("color");
  constexpr double kColors = 56;
  if (!EqualsIgnoringCase(inside.substr(0, kNumbered.size()), kNumbered)) return false;
  const Value number = TextToNumber(inside.substr(kNumbered.size()), {});
  return number.IsNumber() && number.AsNumber() >= 1 && number.AsNumber() <= kColors;
}

// [h], [mm] and their like.
std::optional<FormatToken> ElapsedPart(XStringView inside) {
  const XCHAR letter = SmallLetter(inside.front());
  const bool isRun = std::all_of(inside.begin(), inside.end(), [&](XCHAR unit) { return SmallLetter(unit) == letter; });
  if (!isRun || (letter != 'h' && letter != 'm' && letter != 's')) return std::nullopt;
  const TokenKind kind = letter == 'h'   ? TokenKind::kElapsedHours
                         : letter == 'm' ? TokenKind::kElapsedMinutes
                                         : TokenKind::kElapsedSeconds;
  return FormatToken{kind, {}, 0, static_cast<int>(inside.size())};
}

// Whether a point stands behind seconds.
bool IsBehindSeconds(const std::vector<FormatToken>& tokens) {
  if (tokens.size() < 2 || !tokens.back().Is(TokenKind::kDecimalMark)) return false;
  const FormatToken& before = tokens[tokens.size() - 2];
  return before.Is(TokenKind::kSecond) || before.Is(TokenKind::kElapsedSeconds);
}

}  // namespace

XCHAR FormatScanner::Take() {
  const XCHAR unit = rest_.front();
  rest_.remove_prefix(1);
  return unit;
}

bool FormatScanner::AcceptWord(XStringView word) {
  if (!EqualsIgnoringCase(rest_.substr(0, word.size()), word)) return false;
  rest_.remove_prefix(word.size());
  return true;
}

bool FormatScanner::AcceptSemicolon() {
  if (rest_.empty()) return false;
  Take();
  return true;
}

bool FormatScanner::TakeSection(FormatSection& section) {
  while (!rest_.empty() && rest_.front() != ';')
    if (!TakeToken(section)) return false;
  return true;
}

bool FormatScanner::TakeToken(FormatSection& section) {
  const XCHAR unit = rest_.front();
  auto& tokens = section.tokens;
  if (unit == marks_.decimal || unit == marks_.Thousands()) {
    Take();
    tokens.push_back({unit == marks_.decimal ? TokenKind::kDecimalMark : TokenKind::kThousands});
    return true;
  }
  switch (unit) {
    case '"':
      TakeQuoted(section);
      return true;
    case '\\':
    case '_':
    case '*':
      return TakeEscape(section);
    case '[':
      return TakeBracket(section);
    case '0':
      if (IsBehindSeconds(tokens)) return TakeSecondFraction(section);
      [[fallthrough]];
    case '#':
    case '?':
      tokens.push_back({TokenKind::kDigit, {}, Take()});
      return true;
    case '%':
      Take();
      tokens.push_back({TokenKind::kPercent});
      return true;
    case '/':
      Take();
      tokens.push_back({TokenKind::kSlash});
      return true;
    case '@':
      Take();
      tokens.push_back({TokenKind::kText});
      return true;
    default:
      if (SmallLetter(unit) >= 'a' && SmallLetter(unit) <= 'z') return TakeLetters(section);
      if (IsDigit(unit))
        tokens.push_back({TokenKind::kFixedDigit, {}, Take()});
      else
        AddLiteral(section, XString(1, Take()));
      return true;
  }
}

void FormatScanner::TakeQuoted(FormatSection& section) {
  Take();
  const std::size_t end = std::min(rest_.find(XTEXT('"')), rest_.size());
  AddLiteral(section, rest_.substr(0, end));
  rest_.remove_prefix(std::min(end + 1, rest_.size()));
}

// The next character as it is (\x), as a blank of its width (_x), or repeated as often as the cell is wide (*x), which
// a text is not.
bool FormatScanner::TakeEscape(FormatSection& section) {
  const XCHAR escape = Take();
  if (rest_.empty()) return false;
  const XCHAR next = Take();
  if (escape != '*') AddLiteral(section, XString(1, escape == '_' ? XTEXT(' ') : next));
  return true;
}

// A point with zeros behind seconds; Excel shows three digits at most.
bool FormatScanner::TakeSecondFraction(FormatSection& section) {
  constexpr int kMostDigits = 3;
  FormatToken fraction{TokenKind::kSecondFraction};
  for (; !rest_.empty() && rest_.front() == '0'; Take()) ++fraction.count;
  section.tokens.back() = fraction;
  return fraction.count <= kMostDigits;
}

// Letters without a meaning stand for themselves; those that belong to other calendars have none here.
bool FormatScanner::TakeLetters(FormatSection& section) {
  if (AcceptWord(XTEXT("general"))) {
    section.tokens.push_back({TokenKind::kGeneral});
    return true;
  }
  for (const XStringView word : {XTEXT("am/pm"), XTEXT("a/p")}) {
    const XString written(rest_.substr(0, word.size()));
    if (!AcceptWord(word)) continue;
    section.tokens.push_back({TokenKind::kHalfDay, written});
    return true;
  }
  switch (SmallLetter(rest_.front())) {
    case 'y':
    case 'm':
    case 'd':
    case 'h':
    case 's':
      return TakeDatePart(section);
    case 'e':
      return TakeExponent(section);
    case 'b':
    case 'g':
      return false;
    default:
      AddLiteral(section, XString(1, Take()));
      return true;
  }
}

bool FormatScanner::TakeDatePart(FormatSection& section) {
  const XCHAR letter = SmallLetter(rest_.front());
  FormatToken token;
  for (; !rest_.empty() && SmallLetter(rest_.front()) == letter; Take()) ++token.count;
  token.kind = letter == 'y'   ? TokenKind::kYear
               : letter == 'm' ? TokenKind::kMonth
               : letter == 'd' ? TokenKind::kDay
               : letter == 'h' ? TokenKind::kHour
                               : TokenKind::kSecond;
  section.tokens.push_back(std::move(token));
  return true;
}

bool FormatScanner::TakeExponent(FormatSection& section) {
  const XCHAR letter = Take();
  if (rest_.empty() || (rest_.front() != '+' && rest_.front() != '-')) return false;
  section.tokens.push_back({TokenKind::kExponent, {}, letter, Take() == '+' ? 1 : 0});
  return true;
}

bool FormatScanner::TakeBracket(FormatSection& section) {
  const std::size_t end = rest_.find(XTEXT(']'));
  if (end == XStringView::npos || end < 2) return false;
  const XStringView inside = rest_.substr(1, end - 1);
  rest_.remove_prefix(end + 1);
  if (inside.front() == '$') {
    // A currency and the number of a locale; the names of days and months are English in all of them.
    if (const XStringView currency = inside.substr(1, inside.rfind(XTEXT('-')) - 1); !currency.empty())
      AddLiteral(section, currency);
    return true;
  }
  if (auto elapsed = ElapsedPart(inside)) {
    section.tokens.push_back(*std::move(elapsed));
    return true;
  }
  return IsColor(inside) || TakeCondition(inside, section);
}

bool FormatScanner::TakeCondition(XStringView inside, FormatSection& section) const {
  using Test = FormatCondition::Test;
  constexpr struct {
    XStringView sign;
    Test test;
  } kTests[] = {{XTEXT("<="), Test::kLessOrEqual}, {XTEXT(">="), Test::kGreaterOrEqual}, {XTEXT("<>"), Test::kNotEqual},
                {XTEXT("<"), Test::kLess},         {XTEXT(">"), Test::kGreater},         {XTEXT("="), Test::kEqual}};
  for (const auto& [sign, test] : kTests) {
    if (!inside.starts_with(sign)) continue;
    const Value limit = TextToNumber(inside.substr(sign.size()), marks_);
    if (section.condition || !limit.IsNumber()) return false;
    section.condition = {test, limit.AsNumber()};
    return true;
  }
  return false;
}

}  // namespace qcalc
