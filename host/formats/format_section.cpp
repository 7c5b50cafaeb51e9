#include "host/formats/format_section.h"

#include <algorithm>

#include "host/formats/format_scanner.h"

namespace qcalc {

namespace {

using TokenKind = FormatToken::Kind;
using Tokens = std::vector<FormatToken>;

bool Has(const Tokens& tokens, TokenKind kind) {
  return std::any_of(tokens.begin(), tokens.end(), [kind](const FormatToken& token) { return token.Is(kind); });
}

void MakeLiteral(FormatToken& token, XCHAR unit) { token = {TokenKind::kLiteral, XString(1, unit)}; }

// What has no part in dates is shown as it stands.
bool FinishDate(FormatSection& section, NumberMarks marks) {
  section.kind = FormatSection::Kind::kDate;
  for (const TokenKind strange : {TokenKind::kDigit, TokenKind::kExponent, TokenKind::kText, TokenKind::kGeneral})
    if (Has(section.tokens, strange)) return false;
  for (FormatToken& token : section.tokens) {
    if (token.Is(TokenKind::kDecimalMark)) MakeLiteral(token, marks.decimal);
    if (token.Is(TokenKind::kThousands)) MakeLiteral(token, marks.Thousands());
    if (token.Is(TokenKind::kPercent)) MakeLiteral(token, XTEXT('%'));
    if (token.Is(TokenKind::kSlash)) MakeLiteral(token, XTEXT('/'));
    if (token.Is(TokenKind::kFixedDigit)) MakeLiteral(token, token.mark);
  }
  // m and mm right behind hours or right before seconds are minutes.
  FormatToken* previous = nullptr;
  for (FormatToken& token : section.tokens) {
    if (!token.IsDatePart() || token.Is(TokenKind::kHalfDay)) continue;
    const bool isSecond = token.Is(TokenKind::kSecond) || token.Is(TokenKind::kElapsedSeconds);
    if (isSecond && previous && previous->Is(TokenKind::kMonth) && previous->count <= 2)
      previous->kind = TokenKind::kMinute;
    const bool isBehindHour = previous && (previous->Is(TokenKind::kHour) || previous->Is(TokenKind::kElapsedHours));
    if (token.Is(TokenKind::kMonth) && token.count <= 2 && isBehindHour) token.kind = TokenKind::kMinute;
    previous = &token;
  }
  return true;
}

// Marks between digits part thousands; behind the last digit each leaves three places out; before any digit they are
// literals.
void FinishThousands(FormatSection& section, NumberMarks marks) {
  Tokens& tokens = section.tokens;
  for (std::size_t i = 0; i < tokens.size();) {
    if (!tokens[i].Is(TokenKind::kThousands)) {
      ++i;
      continue;
    }
    std::size_t end = i;
    while (end < tokens.size() && tokens[end].Is(TokenKind::kThousands)) ++end;
    if (i == 0 || !tokens[i - 1].Is(TokenKind::kDigit)) {
      for (; i < end; ++i) MakeLiteral(tokens[i], marks.Thousands());
      continue;
    }
    if (end < tokens.size() && tokens[end].Is(TokenKind::kDigit))
      section.isGrouped = true;
    else
      section.scale -= 3 * static_cast<int>(end - i);
    tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i), tokens.begin() + static_cast<std::ptrdiff_t>(end));
  }
}

// A slash between digits makes a fraction of a number.
bool IsFraction(const Tokens& tokens) {
  const auto isDigit = [](const FormatToken& token) {
    return token.Is(TokenKind::kDigit) || token.Is(TokenKind::kFixedDigit);
  };
  for (std::size_t i = 1; i + 1 < tokens.size(); ++i)
    if (tokens[i].Is(TokenKind::kSlash) && tokens[i - 1].Is(TokenKind::kDigit) && isDigit(tokens[i + 1])) return true;
  return false;
}

// Denominators keep their fixed digits, and what looks like more slashes, points and exponents is shown as it stands.
bool FinishNumber(FormatSection& section, NumberMarks marks) {
  const bool isFraction = IsFraction(section.tokens);
  FinishThousands(section, marks);
  bool hasSlash = false, hasPoint = false, hasExponent = false;
  for (std::size_t i = 0; i < section.tokens.size(); ++i) {
    FormatToken& token = section.tokens[i];
    if (token.Is(TokenKind::kPercent)) {
      section.scale += 2;
      MakeLiteral(token, XTEXT('%'));
    } else if (token.Is(TokenKind::kExponent)) {
      if (hasExponent || isFraction || i + 1 == section.tokens.size() || !section.tokens[i + 1].Is(TokenKind::kDigit))
        return false;
      hasExponent = true;
    } else if (token.Is(TokenKind::kDecimalMark)) {
      if (isFraction) return false;
      if (hasPoint || hasExponent) MakeLiteral(token, marks.decimal);
      hasPoint = true;
    } else if (token.Is(TokenKind::kSlash)) {
      if (!isFraction || hasSlash) MakeLiteral(token, XTEXT('/'));
      hasSlash = true;
    } else if (token.Is(TokenKind::kFixedDigit) && !hasSlash) {
      MakeLiteral(token, token.mark);
    }
  }
  const bool hasDigits = Has(section.tokens, TokenKind::kDigit) || hasPoint;
  section.kind = isFraction    ? FormatSection::Kind::kFraction
                 : hasExponent ? FormatSection::Kind::kScientific
                 : hasDigits   ? FormatSection::Kind::kNumber
                               : FormatSection::Kind::kLiterals;
  return true;
}

bool Finish(FormatSection& section, NumberMarks marks) {
  if (std::any_of(section.tokens.begin(), section.tokens.end(), [](const auto& token) { return token.IsDatePart(); }))
    return FinishDate(section, marks);
  const bool hasText = Has(section.tokens, TokenKind::kText), isGeneral = Has(section.tokens, TokenKind::kGeneral);
  if ((hasText || isGeneral) && Has(section.tokens, TokenKind::kDigit)) return false;
  if (!FinishNumber(section, marks)) return false;
  if (isGeneral) section.kind = FormatSection::Kind::kGeneral;
  if (hasText) section.kind = FormatSection::Kind::kText;
  return true;
}

}  // namespace

bool FormatCondition::Takes(double number) const {
  switch (test) {
    case Test::kLess:
      return number < limit;
    case Test::kLessOrEqual:
      return number <= limit;
    case Test::kEqual:
      return number == limit;
    case Test::kNotEqual:
      return number != limit;
    case Test::kGreaterOrEqual:
      return number >= limit;
    case Test::kGreater:
      return number > limit;
  }
  return false;
}

bool FormatCondition::TakesNegativesOnly() const {
  if (test == Test::kLess) return limit <= 0;
  return (test == Test::kLessOrEqual || test == Test::kEqual) && limit < 0;
}

std::optional<std::vector<FormatSection>> ParseFormat(XStringView format, NumberMarks marks) {
  constexpr std::size_t kMostSections = 4;
  constexpr std::size_t kMostConditions = 2;
  std::vector<FormatSection> sections;
  FormatScanner scanner(format, marks);
  do {
    FormatSection section;
    if (!scanner.TakeSection(section) || !Finish(section, marks)) return std::nullopt;
    if (section.condition && sections.size() >= kMostConditions) return std::nullopt;
    sections.push_back(std::move(section));
  } while (scanner.AcceptSemicolon());
  if (sections.size() > kMostSections) return std::nullopt;
  return sections;
}

}  // namespace qcalc
