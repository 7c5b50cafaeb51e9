#include "frame/errors/exceptions.h"

#include <cstdio>
#include <new>

#include "frame/text/error_text.h"

namespace quillmere {
namespace {

/// UTF-8 of a wide text; a surrogate without its other half becomes U+FFFD.
std::string NarrowText(XStringView text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::uint32_t point = text[at];
    if (point >= 0xD800 && point <= 0xDFFF) {
      const std::uint32_t low = at + 1 < text.size() ? text[at + 1] : 0;
      const bool paired = point <= 0xDBFF && low >= 0xDC00 && low <= 0xDFFF;
      point = paired ? 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
      if (paired) ++at;
    }
    const auto put = [&narrow](std::uint32_t byte) { narrow.push_back(static_cast<char>(byte)); };
    if (point < 0x80) {
      put(point);
      continue;
    }
    if (point < 0x800) {
      put(0xC0 | (point >> 6));
    } else {
      if (point < 0x10000) {
        put(0xE0 | (point >> 12));
      } else {
        put(0xF0 | (point >> 18));
        put(0x80 | ((point >> 12) & 0x3F));
      }
      put(0x80 | ((point >> 6) & 0x3F));
    }
    put(0x80 | (point & 0x3F));
  }
  return narrow;
}

/// A 32-bit code in upper-case hexadecimal, "0x" before it.
XString HexText(std::uint32_t code, int leastDigits) {
  char digits[16];
  const int length = std::snprintf(digits, sizeof digits, "0x%0*X", leastDigits, code);
  return XString(digits, digits + length);
}

XString ComMessage(XStringView call, std::int32_t hresult) {
  if (call.empty()) return XString(MessageText(MessageId::kComCallFailed));
  return FormatCatalogue(MessageId::kCallFailedWithCode, call, HResultText(hresult));
}

}  // namespace

CXlRuntimeException::CXlRuntimeException(XStringView message)
    : std::runtime_error(NarrowText(message)), message_(std::make_shared<const XString>(message)) {}

CXlUninitializedOperException::CXlUninitializedOperException()
    : CXlConversionException(MessageText(MessageId::kOperNotInitialized)) {}

CXlArrayTooLargeException::CXlArrayTooLargeException() : CXlRuntimeException(MessageText(MessageId::kArrayTooLarge)) {}

CXlEmptyArrayException::CXlEmptyArrayException() : CXlRuntimeException(MessageText(MessageId::kArrayEmpty)) {}

CXlStringTooLongException::CXlStringTooLongException() : CXlRuntimeException(MessageText(MessageId::kStringTooLong)) {}

CXlBadOperTypeException::CXlBadOperTypeException() : CXlRuntimeException(MessageText(MessageId::kBadOperType)) {}

CXlIllegalArgumentException::CXlIllegalArgumentException()
    : CXlRuntimeException(MessageText(MessageId::kIllegalArgument)) {}

CXlOutOfRangeException::CXlOutOfRangeException() : CXlRuntimeException(MessageText(MessageId::kIndexOutOfRange)) {}

CXlErrorException::CXlErrorException(std::int32_t code)
    : CXlRuntimeException(FormatCatalogue(MessageId::kThrewExcelError, ErrorText(code))), code_(code) {}

CXlStructuredException::CXlStructuredException(std::uint32_t code)
    : CXlRuntimeException(code == 0 ? XString(MessageText(MessageId::kStructuredException))
                                    : FormatCatalogue(MessageId::kStructuredExceptionCode, HexText(code, 1))),
      code_(code) {}

XString HResultText(std::int32_t hresult) { return HexText(static_cast<std::uint32_t>(hresult), 8); }

CXlComException::CXlComException(XStringView call, std::int32_t hresult)
    : CXlRuntimeException(ComMessage(call, hresult)), call_(std::make_shared<const XString>(call)), result_(hresult) {}

[[gnu::cold]] void ThrowBadOperType() { throw CXlBadOperTypeException(); }
[[gnu::cold]] void ThrowUninitializedOper() { throw CXlUninitializedOperException(); }
[[gnu::cold]] void ThrowStringTooLong() { throw CXlStringTooLongException(); }
[[gnu::cold]] void ThrowOutOfRange() { throw CXlOutOfRangeException(); }
[[gnu::cold]] void ThrowFunctionEnd() { throw CXlFunctionEnd(); }

}  // namespace quillmere
