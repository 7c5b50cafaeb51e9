#include "host/xlsx/iso_date.h"

#include <charconv>

#include "host/text/digits.h"
#include "host/values/calendar.h"

namespace qcalc {

namespace {

// A number of exactly so many digits off the front of the text; -1 where none stands there.
int TakeDigits(std::string_view& text, std::size_t digits) {
  if (text.size() < digits) return -1;
  for (const char byte : text.substr(0, digits))
    if (!IsDigit(byte)) return -1;
  const int number = *ReadWhole<int>(text.substr(0, digits));
  text.remove_prefix(digits);
  return number;
}

bool Accept(std::string_view& text, char byte) {
  if (!text.starts_with(byte)) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<int> TakeDay(std::string_view& text, bool uses1904) {
  CalendarDay day;
  day.year = TakeDigits(text, 4);
  if (!Accept(text, '-')) return std::nullopt;
  day.month = TakeDigits(text, 2);
  if (!Accept(text, '-')) return std::nullopt;
  day.day = TakeDigits(text, 2);
  const std::optional<int> serial = SerialOf(day);
  const int behind = DaysFrom1900(uses1904);
  return !serial || *serial < behind ? std::nullopt : std::optional(*serial - behind);
}

// The part of a day; seconds may have a fraction, or be left out.
std::optional<double> TakeTime(std::string_view& text) {
  const int hours = TakeDigits(text, 2);
  if (!Accept(text, ':')) return std::nullopt;
  const int minutes = TakeDigits(text, 2);
  double seconds = 0;
  if (Accept(text, ':')) {
    if (text.empty() || !IsDigit(text.front())) return std::nullopt;
    const auto [end, fault] =
        std::from_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed);
    if (fault != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  }
  if (hours < 0 || hours > 24 || minutes < 0 || minutes > 59 || !(seconds < 60)) return std::nullopt;
  return (hours * 3600 + minutes * 60 + seconds) / 86'400;
}

}  // namespace

std::optional<double> ReadIsoDate(std::string_view text, bool uses1904) {
  double serial = 0;
  const bool hasDay = text.size() > 4 && text[4] == '-';
  if (hasDay) {
    const auto day = TakeDay(text, uses1904);
    if (!day) return std::nullopt;
    serial = *day;
  }
  if (Accept(text, 'T') || !hasDay) {
    const auto time = TakeTime(text);
    if (!time) return std::nullopt;
    serial += *time;
    Accept(text, 'Z');
  }
  return text.empty() ? std::optional(serial) : std::nullopt;
}

}  // namespace qcalc
