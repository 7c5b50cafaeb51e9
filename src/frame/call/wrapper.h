// The frame around every exported worksheet function: Excel's values in, one implementation called, a value or an error
// out. Nothing, of any kind, leaves it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// What an export hands to the frame: it writes `result`, which is never set on entry; `arguments` are in registered
/// order.
using FunctionBody = void (*)(CXlOper& result, const CXlOper* arguments);

/// One argument as Excel passes it, before it is wrapped.
struct RawArgument {
  enum class Form { kOper12, kOper4, kInt, kText12, kText4, kBoolean };

  Form form;
  union {
    const XLOPER12* oper12;
    const XLOPER* oper4;
    const XCHAR* text12;
    const char* text4;
    std::int32_t integer;
  };

  explicit RawArgument(const XLOPER12* value) noexcept : form(Form::kOper12), oper12(value) {}
  explicit RawArgument(const XLOPER* value) noexcept : form(Form::kOper4), oper4(value) {}
  explicit RawArgument(const XCHAR* value) noexcept : form(Form::kText12), text12(value) {}
  explicit RawArgument(const char* value) noexcept : form(Form::kText4), text4(value) {}
  explicit RawArgument(std::int32_t value) noexcept : form(Form::kInt), integer(value) {}
  explicit RawArgument(std::int16_t value) noexcept : form(Form::kBoolean), integer(value) {}
};

/// The out-of-line core of both frames. `storage` has room for `count` CXlOper objects.
XLOPER12* RunFunction12(FunctionBody body, const RawArgument* raw, std::size_t count, void* storage) noexcept;
XLOPER* RunFunction4(FunctionBody body, const RawArgument* raw, std::size_t count, void* storage) noexcept;

/// Runs `body` for a `_12` export and returns this thread's return slot.
template <class... Raw>
XLOPER12* CallFunction12(FunctionBody body, Raw... raw) {
  const RawArgument arguments[] = {RawArgument(raw)..., RawArgument(std::int32_t{0})};
  alignas(CXlOper) std::byte storage[sizeof(CXlOper) * (sizeof...(Raw) + 1)];
  return RunFunction12(body, arguments, sizeof...(Raw), storage);
}

/// Runs `body` for a `_4` export: arguments are converted to 16-bit values, the result to an 8-bit one.
template <class... Raw>
XLOPER* CallFunction4(FunctionBody body, Raw... raw) {
  const RawArgument arguments[] = {RawArgument(raw)..., RawArgument(std::int32_t{0})};
  alignas(CXlOper) std::byte storage[sizeof(CXlOper) * (sizeof...(Raw) + 1)];
  return RunFunction4(body, arguments, sizeof...(Raw), storage);
}

}  // namespace quillmere
