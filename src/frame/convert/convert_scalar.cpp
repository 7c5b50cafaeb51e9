#include "frame/convert/convert_scalar.h"

#include <algorithm>

#include "frame/callbacks/callbacks.h"
#include "frame/text/fold_case.h"

namespace quillmere {
namespace {

/// The reference to the top-left cell of the first area alone, so that Excel hands over one value and not a whole
/// range.
CXlOper TopLeftReference(const CXlOper& reference) {
  XLREF12 corner = reference.Areas().front();
  corner.rwLast = corner.rwFirst;
  corner.colLast = corner.colFirst;
  if (reference.Type() == xltypeSRef) return CXlOper::Reference(corner);
  return CXlOper::Reference(reference.Sheet(), {&corner, 1});
}

template <class Value, class Allowed>
bool IsAllowed(const Value& value, std::span<const Allowed> allowed) {
  return allowed.empty() || std::any_of(allowed.begin(), allowed.end(), [&value](const Allowed& one) {
           if constexpr (std::is_same_v<Value, XString>)
             return EqualFolded(value, one);
           else
             return static_cast<std::int32_t>(value) == one;
         });
}

}  // namespace

CXlOper TopLeftValue(const CXlOper& value) {
  if (!value.IsReference()) return CXlOper::BorrowCell(*value.Cells().first);
  CXlOper fetched;
  if (TryCallExcel(fetched, xlCoerce, TopLeftReference(value)) != xlretSuccess) return {};
  return fetched.IsArray() ? CXlOper::FromCell(*fetched.Cells().first) : std::move(fetched);
}

template <ElementKind kind>
ElementOf<kind> ConvertTo(const CXlOper& value, bool strict) {
  ElementOf<kind> result{};
  const CXlOper cell = TopLeftValue(value);
  const bool converted = cell.IsSet() && ConvertCellTo<kind>(cell.Raw(), TextReading::kAskExcel, result);
  if (!converted && strict) throw CXlConversionException(FormatCatalogue(MessageId::kExpected, TypeName(kind)));
  return result;
}

template <ElementKind kind>
void CheckAllowed(const ElementOf<kind>& value, const CScalarConvertParams<kind>& params) {
  if constexpr (kind != ElementKind::kNumber && kind != ElementKind::kBoolean)
    if (!IsAllowed(value, params.AllowedValues())) params.ThrowNotOneOf(params.AllowedValues());
}

template <ElementKind kind>
ElementOf<kind> ConvertArgument(const CXlOper& argument, const CScalarConvertParams<kind>& params) {
  if (argument.IsAbsent()) params.ThrowScalarNotInitialized(kind);
  ElementOf<kind> result{};
  const CXlOper cell = TopLeftValue(argument);
  if (!cell.IsSet() || !ConvertCellTo<kind>(cell.Raw(), TextReading::kAskExcel, result))
    params.ThrowFailedToConvert(cell.Raw(), TypeName(kind));
  CheckAllowed(result, params);
  return result;
}

#define INSTANTIATE(kind)                                                                      \
  template ElementOf<kind> ConvertTo<kind>(const CXlOper&, bool);                              \
  template void CheckAllowed<kind>(const ElementOf<kind>&, const CScalarConvertParams<kind>&); \
  template ElementOf<kind> ConvertArgument<kind>(const CXlOper&, const CScalarConvertParams<kind>&);
FOR_EACH_ELEMENT_KIND(INSTANTIATE)
#undef INSTANTIATE

}  // namespace quillmere
