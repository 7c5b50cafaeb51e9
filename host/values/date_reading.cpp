#include "host/values/date_reading.h"

#include <array>
#include <string>
#include <vector>

#include "host/text/digits.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 9999;
constexpr std::array<std::string_view, 12> kMonths = {"january",   "february", "march",    "april",
                                                      "may",       "june",     "july",     "august",
                                                      "september", "october",  "november", "december"};

// A run of digits, a word in small letters, or one other byte; blanks count as one.
struct Token {
  enum Kind { kNumber, kWord, kMark } kind;
  int number = 0;
  std::size_t digits = 0;
  std::string word;
  char mark = 0;

  bool Is(char byte) const { return kind == kMark && mark == byte; }
};

// Nothing when a number is too long to be part of a date or time.
std::optional<std::vector<Token>> Split(std::string_view text) {
  constexpr std::size_t kMostDigits = 9;
  std::vector<Token> tokens;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    Token token{Token::kMark, 0, 0, {}, text[at]};
    if (IsDigit(text[at])) {
      while (at < text.size() && IsDigit(text[at])) ++at;
      if (at - start > kMostDigits) return std::nullopt;
      token.kind = Token::kNumber;
      token.digits = at - start;
      token.number = *ReadWhole<int>(text.substr(start, at - start));
    } else if (IsLetter(text[at])) {
      for (; at < text.size() && IsLetter(text[at]); ++at) token.word += SmallLetter(text[at]);
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

using Tokens = std::vector<Token>;

int MonthOf(const Token& token) {
  if (token.kind != Token::kWord || token.word.size() < 3) return 0;
  for (std::size_t i = 0; i < kMonths.size(); ++i)
    if (token.word == kMonths[i] || token.word == kMonths[i].substr(0, 3)) return static_cast<int>(i) + 1;
  return 0;
}

std::optional<int> YearOf(const Token& token) {
  if (token.kind != Token::kNumber) return std::nullopt;
  if (token.digits <= 2) return token.number + (token.number < 30 ? 2000 : 1900);
  if (token.digits != 4 || token.number < kFirstYear || token.number > kLastYear) return std::nullopt;
  return token.number;
}

bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

// The serial of a date, or nothing when no such day exists.
std::optional<double> SerialOf(int year, int month, int day) {
  static constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
  if (month < 1 || month > 12 || day < 1) return std::nullopt;
  const bool leapDay = month == 2 && (IsLeap(year) || year == 1900);  // the 1900 system has a 29 February 1900
  if (day > kDaysBefore[month] - kDaysBefore[month - 1] + (leapDay ? 1 : 0)) return std::nullopt;
  const int past = year - kFirstYear;
  const int last = year - 1;
  const int leapDays = last / 4 - last / 100 + last / 400 - (1899 / 4 - 1899 / 100 + 1899 / 400);
  int serial = past * 365 + leapDays + kDaysBefore[month - 1] + day;
  if (IsLeap(year) && month > 2) ++serial;
  if (year > 1900 || month > 2) ++serial;
  return serial;
}

// Takes a date off the front of the tokens: the number of tokens it takes, 0 for none.
std::size_t TakeDate(const Tokens& tokens, std::optional<double>& serial) {
  const auto isSeparator = [&](std::size_t i) {
    return i < tokens.size() && (tokens[i].Is('-') || tokens[i].Is('/') || tokens[i].Is(' '));
  };
  if (tokens.size() >= 5 && isSeparator(1) && isSeparator(3)) {
    const Token &first = tokens[0], &second = tokens[2], &third = tokens[4];
    const bool numbers = first.kind == Token::kNumber && second.kind == Token::kNumber && third.kind == Token::kNumber;
    const bool sameMark = tokens[1].mark == tokens[3].mark && !tokens[1].Is(' ');
    if (numbers && sameMark && first.digits == 4) {
      if (const auto year = YearOf(first)) serial = SerialOf(*year, second.number, third.number);
    } else if (numbers && sameMark) {
      if (const auto year = YearOf(third)) serial = SerialOf(*year, first.number, second.number);
    } else if (first.kind == Token::kNumber && MonthOf(second) > 0) {
      if (const auto year = YearOf(third)) serial = SerialOf(*year, MonthOf(second), first.number);
    }
    if (serial) return 5;
  }
  // Mar 23, 2002 with or without the blank behind the comma.
  if (tokens.size() >= 5 && MonthOf(tokens[0]) > 0 && tokens[1].Is(' ') && tokens[2].kind == Token::kNumber &&
      tokens[3].Is(',')) {
    const std::size_t yearAt = tokens[4].Is(' ') ? 5 : 4;
    if (yearAt < tokens.size())
      if (const auto year = YearOf(tokens[yearAt])) serial = SerialOf(*year, MonthOf(tokens[0]), tokens[2].number);
    if (serial) return yearAt + 1;
  }
  return 0;
}

// Hours, minutes and seconds of a time, as a fraction of a day. Only the first part may pass its limit.
std::optional<double> ReadTime(const Tokens& tokens, std::size_t at) {
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
  if (parts.size() == 3 && at + 1 < tokens.size() && tokens[at].Is('.') && tokens[at + 1].kind == Token::kNumber) {
    fraction = tokens[at + 1].number;
    for (std::size_t i = 0; i < tokens[at + 1].digits; ++i) fraction /= 10;
    at += 2;
  }
  bool halfDay = false;
  if (at < tokens.size()) {
    if (tokens[at].Is(' ')) ++at;
    if (at >= tokens.size() || tokens[at].kind != Token::kWord) return std::nullopt;
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

std::optional<double> ReadDateTime(std::string_view text) {
  const auto tokens = Split(text);
  if (!tokens || tokens->empty()) return std::nullopt;
  std::optional<double> date;
  const std::size_t taken = TakeDate(*tokens, date);
  if (taken == tokens->size()) return date;
  if (taken > 0 && !(*tokens)[taken].Is(' ')) return std::nullopt;
  const auto time = ReadTime(*tokens, taken > 0 ? taken + 1 : 0);
  return time ? std::optional(date.value_or(0) + *time) : std::nullopt;
}

}  // namespace qcalc
