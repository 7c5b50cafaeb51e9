#include "host/text/utf8.h"

namespace qcalc {

namespace {

void AppendUtf8(std::string& bytes, char32_t point) {
  const auto tail = [&](int shift) { bytes.push_back(static_cast<char>(0x80 | ((point >> shift) & 0x3F))); };
  if (point < 0x80) {
    bytes.push_back(static_cast<char>(point));
  } else if (point < 0x800) {
    bytes.push_back(static_cast<char>(0xC0 | (point >> 6)));
    tail(0);
  } else if (point < 0x10000) {
    bytes.push_back(static_cast<char>(0xE0 | (point >> 12)));
    tail(6);
    tail(0);
  } else {
    bytes.push_back(static_cast<char>(0xF0 | (point >> 18)));
    tail(12);
    tail(6);
    tail(0);
  }
}

// Reads one code point of more than one byte; returns the bytes it takes, or 0 when they are no UTF-8.
std::size_t ReadMultibyte(std::string_view bytes, char32_t& point) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  const std::size_t size = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (size == 0 || bytes.size() < size) return 0;
  point = lead & (0xFFu >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) {
    if (!IsInsideCharacter(bytes[i])) return 0;
    point = (point << 6) | (static_cast<unsigned char>(bytes[i]) & 0x3F);
  }
  const bool overlong = (size == 3 && point < 0x800) || (size == 4 && point < 0x10000);
  return overlong || point > 0x10FFFF ? 0 : size;
}

// Writes at `units` and reads from `bytes` until the end or the first bad byte, whose offset is returned.
std::size_t Decode(std::string_view bytes, XCHAR*& units) {
  std::size_t at = 0;
  while (at < bytes.size()) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    if (byte < 0x80) {
      *units++ = static_cast<XCHAR>(byte);
      ++at;
      continue;
    }
    char32_t point = 0;
    const std::size_t size = ReadMultibyte(bytes.substr(at), point);
    if (size == 0) return at;
    units = WriteCharacter(point, units);
    at += size;
  }
  return at;
}

}  // namespace

XCHAR* WriteCharacter(char32_t number, XCHAR* units) {
  if (number >= 0x10000) {
    *units++ = static_cast<XCHAR>(0xD800 + ((number - 0x10000) >> 10));
    number = 0xDC00 + ((number - 0x10000) & 0x3FF);
  }
  *units++ = static_cast<XCHAR>(number);
  return units;
}

char32_t TakeCharacter(XStringView text, std::size_t& at) {
  const char32_t first = static_cast<std::uint16_t>(text[at++]);
  if (!IsHighSurrogate(first) || at == text.size()) return first;
  const char32_t second = static_cast<std::uint16_t>(text[at]);
  if (!IsLowSurrogate(second)) return first;
  ++at;
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

std::string ToUtf8(XStringView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendUtf8(bytes, TakeCharacter(text, at));
  return bytes;
}

std::optional<XString> FromUtf8(std::string_view bytes, std::size_t* badByte) {
  XString units(bytes.size(), XCHAR{});
  XCHAR* end = units.data();
  const std::size_t read = Decode(bytes, end);
  if (read < bytes.size()) {
    if (badByte) *badByte = read;
    return std::nullopt;
  }
  units.resize(static_cast<std::size_t>(end - units.data()));
  return units;
}

XCHAR* FromUtf8(std::string_view bytes, XCHAR* units) { return Decode(bytes, units) == bytes.size() ? units : nullptr; }

}  // namespace qcalc
