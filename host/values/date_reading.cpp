#include "host/values/date_reading.h"

#include <chrono>
#include <string>
#include <vector>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/values/calendar.h"

namespace qcalc {

namespace {

// A run of digits, a word in small letters, or one other unit; blanks count as one.
struct Token {
  enum Kind { kNumber, kWord, kMark } kind;
  int number = 0;
  std::size_t digits = 0;
  std::string word;
  XCHAR mark = 0;

  bool Is(XCHAR unit) const { return kind == kMark && mark == unit; }
};
using Tokens = std::vector<Token>;

bool IsAsciiLetter(XCHAR unit) { return SmallLetter(unit) >= 'a' && SmallLetter(unit) <= 'z'; }

// Nothing when a number is too long to be part of a date or time.
std::optional<Tokens> Split(XStringView text) {
  constexpr std::size_t kMostDigits = 9;
  Tokens tokens;
  for (std::size_t at = 0; at < text.size();) {
    Token token{Token::kMark, 0, 0, {}, text[at]};
    if (IsDigit(text[at])) {
      for (; at < text.size() && IsDigit(text[at]); ++at) {
        if (++token.digits > kMostDigits) return std::nullopt;
        token.number = token.number * 10 + (text[at] - '0');
      }
      token.kind = Token::kNumber;
    } else if (IsAsciiLetter(text[at])) {
      for (; at < text.size() && IsAsciiLetter(text[at]); ++at) token.word += static_cast<char>(SmallLetter(text[at]));
      token.kind = Token::kWord;
    } else if (text[at] == ' ') {
      while (at < text.size() && text[at] == ' ') ++at;
    } else {
      ++at;
    }
    tokens.push_back(std::move(token));
  }
  return tokens;
}

// 0 for none.
int MonthOf(const Token& token) {
  if (token.kind != Token::kWord || token.word.size() < 3) return 0;
  for (std::size_t i = 0; i < kMonthNames.size(); ++i)
    if (EqualsIgnoringCase(token.word, kMonthNames[i]) || EqualsIgnoringCase(token.word, kMonthNames[i].substr(0, 3)))
      return static_cast<int>(i) + 1;
  return 0;
}

// 0, which no calendar has, for none.
int YearOf(const Token& token) {
  if (token.kind != Token::kNumber) return 0;
  if (token.digits <= 2) return token.number + (token.number < 30 ? 2000 : 1900);
  return token.digits == 4 ? token.number : 0;
}

int CurrentYear() {
  const auto today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
  return static_cast<int>(std::chrono::year_month_day(today).year());
}

bool IsNumber(const Token& token) { return token.kind == Token::kNumber; }
bool IsDateMark(const Token& token) { return token.Is('-') || token.Is('/'); }

// Day, month and year in any of the orders that tell themselves apart.
std::optional<int> ReadThreeParts(const Token& first, const Token& second, const Token& third, bool isSpaced) {
  if (IsNumber(first) && MonthOf(second) > 0) return SerialOf({YearOf(third), MonthOf(second), first.number});
  if (isSpaced || !IsNumber(first) || !IsNumber(second) || !IsNumber(third)) return std::nullopt;
  if (first.digits == 4) return SerialOf({first.number, second.number, third.number});
  return SerialOf({YearOf(third), first.number, second.number});
}

// A day of the current year, or where there is no such day the first of a month.
std::optional<int> ReadDayOrYear(int month, const Token& token) {
  if (!IsNumber(token)) return std::nullopt;
  if (token.digits <= 2)
    if (const auto serial = SerialOf({CurrentYear(), month, token.number})) return serial;
  return SerialOf({YearOf(token), month, 1});
}

std::optional<int> ReadTwoParts(const Token& first, const Token& second, bool isSpaced) {
  if (MonthOf(first) > 0) return ReadDayOrYear(MonthOf(first), second);
  if (!IsNumber(first)) return std::nullopt;
  if (MonthOf(second) > 0) return SerialOf({CurrentYear(), MonthOf(second), first.number});
  if (isSpaced || !IsNumber(second)) return std::nullopt;
  return first.digits == 4 ? SerialOf({first.number, second.number, 1}) : ReadDayOrYear(first.number, second);
}

// Takes a date off the front of the tokens: the number of tokens it takes, 0 for none.
std::size_t TakeDate(const Tokens& tokens, std::optional<int>& serial) {
  const auto isMark = [&](std::size_t i) { return IsDateMark(tokens[i]) || tokens[i].Is(' '); };
  if (tokens.size() < 3 || !isMark(1)) return 0;
  // Mar 23, 2002 with or without the blank behind the comma.
  if (tokens.size() >= 5 && MonthOf(tokens[0]) > 0 && tokens[1].Is(' ') && IsNumber(tokens[2]) && tokens[3].Is(',')) {
    const std::size_t yearAt = tokens[4].Is(' ') ? 5 : 4;
    if (yearAt < tokens.size()) serial = SerialOf({YearOf(tokens[yearAt]), MonthOf(tokens[0]), tokens[2].number});
    return serial ? yearAt + 1 : 0;
  }
  const bool hasMonthName = MonthOf(tokens[2]) > 0;
  if (tokens.size() >= 5 && isMark(3) && (hasMonthName || tokens[1].mark == tokens[3].mark)) {
    serial = ReadThreeParts(tokens[0], tokens[2], tokens[4], tokens[1].Is(' '));
    if (serial) return 5;
  }
  serial = ReadTwoParts(tokens[0], tokens[2], tokens[1].Is(' '));
  return serial ? 3 : 0;
}

// Hours, minutes and seconds of a time, as a fraction of a day. Only the first part may pass its limit.
std::optional<double> ReadTime(const Tokens& tokens, std::size_t at, XCHAR decimalMark) {
  std::vector<int> parts;
  double fraction = 0;
  bool colons = false;
  while (at < tokens.size() && tokens[at].kind == Token::kNumber && parts.size() < 3) {
    parts.push_back(tokens[at++].number);
    if (at >= tokens.size() || !tokens[at].Is(':')) break;
    colons = true;
    ++at;
    if (at >= tokens.size() || tokens[at].kind != Token::kNumber) return std::nullopt;
  }
  if (parts.size() >= 2 && at + 1 < tokens.size() && tokens[at].Is(decimalMark) && IsNumber(tokens[at + 1])) {
    if (parts.size() == 2) parts.insert(parts.begin(), 0);
    fraction = tokens[at + 1].number;
    for (std::size_t i = 0; i < tokens[at + 1].digits; ++i) fraction /= 10;
    at += 2;
  }
  bool halfDay = false;
  if (at < tokens.size()) {
    if (!tokens[at].Is(' ') || ++at == tokens.size() || tokens[at].kind != Token::kWord) return std::nullopt;
    const std::string& word = tokens[at].word;
    if ((word != "am" && word != "pm" && word != "a" && word != "p") || parts.empty() || parts[0] > 12)
      return std::nullopt;
    parts[0] = parts[0] % 12 + (word[0] == 'p' ? 12 : 0);
    halfDay = true;
    ++at;
  }
  if (at != tokens.size() || parts.empty() || (!colons && !halfDay)) return std::nullopt;
  parts.resize(3);
  if (parts[0] > 9999 || parts[1] > 59 || parts[2] > 59) return std::nullopt;
  return ((parts[0] * 60.0 + parts[1]) * 60.0 + parts[2] + fraction) / 86'400.0;
}

}  // namespace

std::optional<double> ReadDateTime(XStringView text, NumberMarks marks) {
  const auto tokens = Split(text);
  if (!tokens || tokens->empty()) return std::nullopt;
  std::optional<int> date;
  const std::size_t taken = TakeDate(*tokens, date);
  if (taken > 0 && (*date -= DaysFrom1900(marks.uses1904)) < 0) return std::nullopt;
  if (taken == tokens->size()) return *date;
  if (taken > 0 && !(*tokens)[taken].Is(' ')) return std::nullopt;
  const auto time = ReadTime(*tokens, taken > 0 ? taken + 1 : 0, marks.decimal);
  return time ? std::optional(date.value_or(0) + *time) : std::nullopt;
}

}  // namespace qcalc
