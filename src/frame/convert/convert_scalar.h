// Converting a value to a scalar.
#pragma once

#include <array>
#include <variant>

#include "frame/convert/convert_cell.h"
#include "frame/convert/convert_params.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// The single value that a scalar conversion looks at: the value itself, or the top-left cell of an array or of the
/// first area of a reference (which costs a callback). A failed callback gives a value never set.
CXlOper TopLeftValue(const CXlOper& value);

/// Converts `value`, asking Excel where Excel must decide. What does not convert is message 11 ("Expected {0}") with
/// `strict`, and the kind's zero without.
template <ElementKind kind>
ElementOf<kind> ConvertTo(const CXlOper& value, bool strict);

/// Message 64 for a value that is none of those allowed.
template <ElementKind kind>
void CheckAllowed(const ElementOf<kind>& value, const CScalarConvertParams<kind>& params);

/// Converts an argument: message 45 when it was left out, message 29 when it does not convert, message 64 when its
/// value is none of those allowed.
template <ElementKind kind>
ElementOf<kind> ConvertArgument(const CXlOper& argument, const CScalarConvertParams<kind>& params);

/// Converts an argument to the first of several kinds that fits: message 44 when it was left out, 33 when none fits.
template <ElementKind... kinds>
std::variant<ElementOf<kinds>...> ConvertArgumentToAny(const CXlOper& argument, const CConvertParamsBase& params) {
  if (argument.IsAbsent()) params.ThrowNotInitialized();
  std::variant<ElementOf<kinds>...> result;
  const CXlOper value = TopLeftValue(argument);
  if (!value.IsSet()) params.ThrowNoPermittedType();
  const XLOPER12& cell = value.Raw();
  const bool found = [&]<std::size_t... index>(std::index_sequence<index...>) {
    return (ConvertCellTo<kinds>(cell, TextReading::kAskExcel, result.template emplace<index>()) || ...);
  }
  (std::index_sequence_for<ElementOf<kinds>...>());
  if (!found) params.ThrowNoPermittedType();
  return result;
}

}  // namespace quillmere
