// xlCoerce.
#include "host/api/coercion.h"
#include "host/callbacks/handlers.h"

namespace qcalc {
namespace {

/// The types that a value can be asked for as.
constexpr std::uint32_t kKinds =
    xltypeNum | xltypeStr | xltypeBool | xltypeRef | xltypeErr | xltypeMulti | xltypeNil | xltypeSRef | xltypeInt;

/// What has been read, as the first type of the mask that it converts to.
CallbackAnswer Coerce(const CallbackRequest& request, const ApiValue& value, std::uint32_t mask) {
  if (auto coerced = CoerceValue(value, mask, request.Marks())) return std::move(*coerced);
  return CallbackAnswer::Failure(xlretFailed);
}

/// The cells of a reference, or the code with which they cannot be read.
CallbackAnswer ReadCells(CallbackRequest& request, const Reference& reference) {
  const Sheet* sheet = request.Evaluation().workbooks->FindSheet(reference.sheet);
  if (!sheet || reference.areas.size() != 1) return CallbackAnswer::Failure(xlretFailed);
  const Area& area = reference.areas[0];
  if (std::int64_t{area.Rows()} * area.Columns() > kMaxArrayCells) return CallbackAnswer::Failure(xlretFailed);
  request.CheckCalculated(reference);
  return sheet->Read(area);
}

CallbackAnswer CoerceReference(CallbackRequest& request, const Reference& reference, std::uint32_t mask) {
  const bool isShortForm = request.context.IsCurrentSheet(reference.sheet) && reference.areas.size() == 1;
  if (mask & xltypeRef) return ApiValue(ApiSheetReference{reference});
  if ((mask & xltypeSRef) && isShortForm) return request.ValueAt(0);
  CallbackAnswer cells = ReadCells(request, reference);
  if (cells.code != xlretSuccess || mask == 0) return cells;
  return Coerce(request, cells.value, mask);
}

}  // namespace

CallbackAnswer HandleCoerce(CallbackRequest& request) {
  std::uint32_t mask = 0;
  if (!request.IsOmitted(1)) {
    const auto number = request.NumberAt(1);
    mask = number && *number >= 0 && *number <= kKinds ? static_cast<std::uint32_t>(*number) : ~kKinds;
    if ((mask & ~kKinds) != 0 || mask != *number) return request.WrongArgument(2, "a set of types to convert to");
  }
  if (const Reference* reference = request.ReferenceAt(0)) return CoerceReference(request, *reference, mask);
  return Coerce(request, request.arguments[0], mask);
}

}  // namespace qcalc
