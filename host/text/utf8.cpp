#include "host/text/utf8.h"

#include <algorithm>

namespace qcalc {

namespace {

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

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
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0) != 0x80) return 0;
    point = (point << 6) | (next & 0x3F);
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
    if (point >= 0x10000) {
      *units++ = static_cast<XCHAR>(0xD800 + ((point - 0x10000) >> 10));
      *units++ = static_cast<XCHAR>(0xDC00 + ((point - 0x10000) & 0x3FF));
    } else {
      *units++ = static_cast<XCHAR>(point);
    }
    at += size;
  }
  return at;
}

}  // namespace

std::string ToUtf8(XStringView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t point = static_cast<std::uint16_t>(text[i]);
    if (IsHighSurrogate(point) && i + 1 < text.size() && IsLowSurrogate(static_cast<std::uint16_t>(text[i + 1])))
      point = 0x10000 + ((point - 0xD800) << 10) + (static_cast<std::uint16_t>(text[++i]) - 0xDC00u);
    AppendUtf8(bytes, point);
  }
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

XCHAR FoldUnit(XCHAR unit) {
  const unsigned u = static_cast<std::uint16_t>(unit);
  const auto shifted = [u](unsigned by) { return static_cast<XCHAR>(u + by); };
  if (u < 0x80) return u >= 'A' && u <= 'Z' ? shifted(32) : unit;
  if (u >= 0xC0 && u <= 0xDE) return u == 0xD7 ? unit : shifted(32);
  // Latin letters in pairs: the capital is even in these ranges, odd in the others.
  const bool evenCapitals = (u >= 0x100 && u <= 0x12F) || (u >= 0x132 && u <= 0x137) || (u >= 0x14A && u <= 0x177) ||
                            (u >= 0x460 && u <= 0x481) || (u >= 0x48A && u <= 0x4BF) || (u >= 0x4D0 && u <= 0x52F) ||
                            (u >= 0x1E00 && u <= 0x1E95) || (u >= 0x1EA0 && u <= 0x1EFF);
  const bool oddCapitals = (u >= 0x139 && u <= 0x148) || (u >= 0x179 && u <= 0x17E) || (u >= 0x4C1 && u <= 0x4CE);
  if (evenCapitals) return u % 2 == 0 ? shifted(1) : unit;
  if (oddCapitals) return u % 2 == 1 ? shifted(1) : unit;
  if (u == 0x178) return static_cast<XCHAR>(0xFF);
  if (u == 0x386) return static_cast<XCHAR>(0x3AC);
  if (u >= 0x388 && u <= 0x38A) return shifted(37);
  if (u == 0x38C) return static_cast<XCHAR>(0x3CC);
  if (u == 0x38E || u == 0x38F) return shifted(63);
  if (u >= 0x391 && u <= 0x3AB) return u == 0x3A2 ? unit : shifted(32);
  if (u >= 0x400 && u <= 0x40F) return shifted(80);
  if (u >= 0x410 && u <= 0x42F) return shifted(32);
  if (u >= 0x531 && u <= 0x556) return shifted(48);
  if (u >= 0xFF21 && u <= 0xFF3A) return shifted(32);
  return unit;
}

XString FoldCase(XStringView text) {
  XString folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), FoldUnit);
  return folded;
}

bool EqualsIgnoringCase(XStringView left, XStringView right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](XCHAR l, XCHAR r) { return l == r || FoldUnit(l) == FoldUnit(r); });
}

}  // namespace qcalc
