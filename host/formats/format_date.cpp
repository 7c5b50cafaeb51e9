#include "host/formats/format_date.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/values/calendar.h"

namespace qcalc {

namespace {

using TokenKind = FormatToken::Kind;

constexpr std::array<std::string_view, 7> kDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};
constexpr int kSecondsOfDay = 86'400;
constexpr int kMostSecondDigits = 3;

XString Units(std::string_view text) { return {text.begin(), text.end()}; }

XString Padded(std::int64_t number, int width) {
  const std::string digits = std::to_string(number);
  const int missing = width - static_cast<int>(digits.size());
  return Units(missing > 0 ? std::string(static_cast<std::size_t>(missing), '0') + digits : digits);
}

// A serial taken apart.
struct Moment {
  int serial = 0;
  int second = 0;    // of the day
  int fraction = 0;  // of the second, in units of the digits shown
};

std::optional<Moment> MomentOf(double serial, int secondDigits, int lastSerial) {
  int unitsOfSecond = 1;
  for (int i = 0; i < secondDigits; ++i) unitsOfSecond *= 10;
  const std::int64_t unitsOfDay = std::int64_t{kSecondsOfDay} * unitsOfSecond;
  const double day = std::floor(serial);
  if (day < 0 || day > lastSerial) return std::nullopt;
  const auto units = static_cast<std::int64_t>(std::floor((serial - day) * static_cast<double>(unitsOfDay) + 0.5));
  const auto ofDay = static_cast<int>(units % unitsOfDay);
  const Moment moment{static_cast<int>(day) + (units == unitsOfDay ? 1 : 0), ofDay / unitsOfSecond,
                      ofDay % unitsOfSecond};
  return moment.serial <= lastSerial ? std::optional(moment) : std::nullopt;
}

// How one section shows a moment.
class DateWriter {
 public:
  DateWriter(const FormatSection& section, NumberMarks marks) : section_(section), marks_(marks) {
    for (const FormatToken& token : section.tokens) {
      hasTime_ = hasTime_ || token.kind >= TokenKind::kHour;
      hasHalfDay_ = hasHalfDay_ || token.Is(TokenKind::kHalfDay);
      if (token.Is(TokenKind::kSecondFraction)) secondDigits_ = std::max(secondDigits_, token.count);
    }
  }

  // Where no time is shown, the end of a day must not round into the next.
  int SecondDigits() const { return hasTime_ ? secondDigits_ : kMostSecondDigits; }

  XString Write(const Moment& moment) const {
    XString out;
    const int serial = moment.serial + DaysFrom1900(marks_.uses1904);
    const CalendarDay day = DayOf(serial);
    for (const FormatToken& token : section_.tokens)
      out += token.kind < TokenKind::kHour ? DatePart(token, day, serial) : TimePart(token, moment);
    return out;
  }

 private:
  static XString DatePart(const FormatToken& token, const CalendarDay& day, int serial) {
    const auto name = [&](std::string_view whole) { return Units(token.count == 3 ? whole.substr(0, 3) : whole); };
    switch (token.kind) {
      case TokenKind::kYear:
        return token.count <= 2 ? Padded(day.year % 100, 2) : Padded(day.year, 4);
      case TokenKind::kMonth: {
        const std::string_view month = kMonthNames[static_cast<std::size_t>(day.month - 1)];
        if (token.count == 5) return Units(month.substr(0, 1));
        return token.count <= 2 ? Padded(day.month, token.count) : name(month);
      }
      case TokenKind::kDay:
        // Day 1 of the system was a Monday, which Excel, with its 29 February 1900, takes for a Sunday.
        if (token.count > 2) return name(kDayNames[static_cast<std::size_t>((serial + 6) % 7)]);
        return Padded(day.day, token.count);
      default:
        return token.text;
    }
  }

  XString TimePart(const FormatToken& token, const Moment& moment) const {
    const int hour = moment.second / 3600;
    const std::int64_t elapsed = std::int64_t{moment.serial} * kSecondsOfDay + moment.second;
    switch (token.kind) {
      case TokenKind::kHour:
        return Padded(hasHalfDay_ ? (hour + 11) % 12 + 1 : hour, std::min(token.count, 2));
      case TokenKind::kMinute:
        return Padded(moment.second / 60 % 60, token.count);
      case TokenKind::kSecond:
        return Padded(moment.second % 60, std::min(token.count, 2));
      case TokenKind::kHalfDay:
        return HalfDay(token.text, hour >= 12);
      case TokenKind::kSecondFraction:
        return SecondFraction(token.count, moment.fraction);
      case TokenKind::kElapsedHours:
        return Padded(elapsed / 3600, token.count);
      case TokenKind::kElapsedMinutes:
        return Padded(elapsed / 60, token.count);
      default:
        return Padded(elapsed, token.count);
    }
  }

  // AM/PM shows capitals however it is written; of A/P each letter is its own.
  static XString HalfDay(XStringView written, bool isAfternoon) {
    if (written.size() == 3) return XString(1, written[isAfternoon ? 2 : 0]);
    return isAfternoon ? XTEXT("PM") : XTEXT("AM");
  }

  XString SecondFraction(int digits, int fraction) const {
    for (int i = digits; i < secondDigits_; ++i) fraction /= 10;
    return XString(1, marks_.decimal) + Padded(fraction, digits);
  }

  const FormatSection& section_;
  NumberMarks marks_;
  bool hasTime_ = false;
  bool hasHalfDay_ = false;
  int secondDigits_ = 0;
};

}  // namespace

std::optional<XString> FormatDate(double serial, const FormatSection& section, NumberMarks marks) {
  const DateWriter writer(section, marks);
  const auto moment = MomentOf(serial, writer.SecondDigits(), kLastSerial - DaysFrom1900(marks.uses1904));
  return moment ? std::optional(writer.Write(*moment)) : std::nullopt;
}

}  // namespace qcalc
