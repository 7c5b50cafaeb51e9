// The tree of exceptions that the frame raises, and the one beside it. The wrapper of an exported function turns each
// into the cell's result.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>

#include "frame/errors/messages.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// Root of the tree: carries a wide message, and an 8-bit (UTF-8) copy of it as what(). Copying never allocates.
class CXlRuntimeException : public std::runtime_error {
 public:
  explicit CXlRuntimeException(XStringView message);
  XStringView Message() const noexcept { return *message_; }

 private:
  std::shared_ptr<const XString> message_;
};

/// An argument or a value that cannot be converted.
class CXlConversionException : public CXlRuntimeException {
 public:
  using CXlRuntimeException::CXlRuntimeException;
};

/// A value read that was never set, or a required argument left out (which has a message of its own).
class CXlUninitializedOperException : public CXlConversionException {
 public:
  CXlUninitializedOperException();
  using CXlConversionException::CXlConversionException;
};

class CXlArrayTooLargeException : public CXlRuntimeException {
 public:
  CXlArrayTooLargeException();
};

class CXlEmptyArrayException : public CXlRuntimeException {
 public:
  CXlEmptyArrayException();
};

class CXlStringTooLongException : public CXlRuntimeException {
 public:
  CXlStringTooLongException();
};

/// A value of a kind that the reader cannot take, or one that is malformed.
class CXlBadOperTypeException : public CXlRuntimeException {
 public:
  CXlBadOperTypeException();
};

class CXlIllegalArgumentException : public CXlRuntimeException {
 public:
  CXlIllegalArgumentException();
  using CXlRuntimeException::CXlRuntimeException;
};

class CXlOutOfRangeException : public CXlRuntimeException {
 public:
  CXlOutOfRangeException();
};

/// Makes the cell's result an Excel error value.
class CXlErrorException : public CXlRuntimeException {
 public:
  /// `code` is one of xlerr..., or a code of a newer Excel, which is passed through.
  explicit CXlErrorException(std::int32_t code);
  std::int32_t Code() const noexcept { return code_; }

 private:
  std::int32_t code_;
};

/// A fault of the processor or the operating system, translated.
class CXlStructuredException : public CXlRuntimeException {
 public:
  /// `code` is the operating system's exception code, such as 0xC0000005; 0 when there is none to tell.
  explicit CXlStructuredException(std::uint32_t code);
  std::uint32_t Code() const noexcept { return code_; }

 private:
  std::uint32_t code_;
};

/// An HRESULT as messages show it: eight upper-case hexadecimal digits behind "0x".
XString HResultText(std::int32_t hresult);

/// A COM call that failed. The message shows the HRESULT.
class CXlComException : public CXlRuntimeException {
 public:
  /// `call` names the failed call; it may be empty.
  CXlComException(XStringView call, std::int32_t hresult);
  XStringView Call() const noexcept { return *call_; }
  std::int32_t Result() const noexcept { return result_; }

 private:
  std::shared_ptr<const XString> call_;
  std::int32_t result_;
};

/// An expression that the library of regular expressions does not compile, or that cannot be compiled safely. The
/// message is the library's.
class CXlBadRegexException : public CXlRuntimeException {
 public:
  using CXlRuntimeException::CXlRuntimeException;
};

/// Matching a regular expression that went beyond what a call may spend on it, or beyond the library's own bounds; the
/// message is the library's.
class CXlRegexLimitException : public CXlRuntimeException {
 public:
  using CXlRuntimeException::CXlRuntimeException;
};

/// Excel wants the worksheet function that runs to return at once: a callback answered xlretAbort or xlretUncalced.
/// Only xlFree may be called from then on, and the cell shows #VALUE!, until Excel calls again. It stands outside the
/// tree, so that whoever makes something of a failure lets it pass: the wrapper alone catches it.
class CXlFunctionEnd {};

// Out of line and cold, so that the checks before them stay small in the loops that read cells.
[[noreturn]] void ThrowBadOperType();
[[noreturn]] void ThrowUninitializedOper();
[[noreturn]] void ThrowStringTooLong();
[[noreturn]] void ThrowOutOfRange();
[[noreturn]] void ThrowFunctionEnd();

}  // namespace quillmere
