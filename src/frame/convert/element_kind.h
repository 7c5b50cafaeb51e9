// The kinds that a value can be converted to.
#pragma once

#include <cstdint>
#include <type_traits>

#include "xlcall/xlcall.h"

namespace quillmere {

enum class ElementKind {
  kBoolean,
  kNumber,
  kInteger,
  kLongInteger,
  kShortInteger,
  kUnsignedShortInteger,
  kError,  ///< an Excel error code
  kString,
};

namespace detail {
template <ElementKind kind>
struct ElementType {
  using Type = std::int32_t;
};
template <>
struct ElementType<ElementKind::kBoolean> {
  using Type = bool;
};
template <>
struct ElementType<ElementKind::kNumber> {
  using Type = double;
};
template <>
struct ElementType<ElementKind::kShortInteger> {
  using Type = std::int16_t;
};
template <>
struct ElementType<ElementKind::kUnsignedShortInteger> {
  using Type = std::uint16_t;
};
template <>
struct ElementType<ElementKind::kString> {
  using Type = XString;
};
}  // namespace detail

/// The C++ type that a value of that kind becomes; integer, long integer and error code have 32 bits.
template <ElementKind kind>
using ElementOf = typename detail::ElementType<kind>::Type;

/// The kind's name in messages: "number", "long integer", ...
XStringView TypeName(ElementKind kind) noexcept;

/// The name in messages of a value's own kind; "unknown type" for what is no single value.
XStringView TypeNameOf(const XLOPER12& value);

}  // namespace quillmere

/// Every kind in turn, for templates that are compiled in one place for all of them.
#define FOR_EACH_ELEMENT_KIND(USE)        \
  USE(ElementKind::kBoolean)              \
  USE(ElementKind::kNumber)               \
  USE(ElementKind::kInteger)              \
  USE(ElementKind::kLongInteger)          \
  USE(ElementKind::kShortInteger)         \
  USE(ElementKind::kUnsignedShortInteger) \
  USE(ElementKind::kError)                \
  USE(ElementKind::kString)
