// The API-only functions but xlCoerce and xlFree.
#include "host/callbacks/handlers.h"
#include "host/objects/object_model.h"

namespace qcalc {
namespace {

constexpr std::int32_t kStackBytes = 65'536;

}  // namespace

CallbackAnswer HandleStack(CallbackRequest&) { return ApiValue(ApiInteger{kStackBytes}); }

CallbackAnswer HandleNothing(CallbackRequest&) { return Value::Boolean(true); }

CallbackAnswer HandleGetWindow(CallbackRequest& request) {
  return ApiValue(ApiInteger{request.Host().objects->MainWindow()});
}

CallbackAnswer HandleGetInstance(CallbackRequest& request) {
  request.Complain("fails in 64-bit Excel: xlGetInstPtr is the one to call");
  return CallbackAnswer::Failure(xlretFailed);
}

CallbackAnswer HandleGetInstancePointer(CallbackRequest&) { return ApiValue(ApiHandle{ProgramHandle()}); }

CallbackAnswer HandleGetName(CallbackRequest& request) { return Value::Text(request.Host().library->PathText()); }

CallbackAnswer HandleAbort(CallbackRequest& request) {
  const auto retain = request.BooleanAt(0);
  if (!request.IsOmitted(0) && !retain) return request.WrongArgument(1, "a boolean");
  if (retain && !*retain && request.context.place == Place::kThreadSafeFunction) {
    request.Complain("may not clear the abort from a thread-safe function");
    return CallbackAnswer::Failure(xlretNotThreadSafe);
  }
  return Value::Boolean(false);
}

CallbackAnswer HandleSheetId(CallbackRequest& request) {
  if (!request.IsOmitted(0) && !request.TextAt(0)) return request.WrongArgument(1, "a sheet's name");
  const Sheet* sheet = request.SheetAt(0);
  return sheet ? CallbackAnswer(ApiValue(ApiSheet{sheet->Id()})) : CallbackAnswer::Failure(xlretFailed);
}

CallbackAnswer HandleSheetName(CallbackRequest& request) {
  if (!request.ReferenceAt(0) && !std::holds_alternative<ApiSheet>(request.arguments[0]))
    return request.WrongArgument(1, "a reference");
  const Sheet* sheet = request.SheetAt(0);
  return sheet ? CallbackAnswer(Value::Text(sheet->FullName())) : CallbackAnswer::Failure(xlretFailed);
}

CallbackAnswer HandleSet(CallbackRequest& request) {
  const Reference* reference = request.ReferenceAt(0);
  if (!reference || reference->areas.size() != 1) return request.WrongArgument(1, "a reference to one area");
  Sheet* sheet = request.Host().workbooks.FindSheet(reference->sheet);
  if (!sheet) return CallbackAnswer::Failure(xlretFailed);
  const Area& area = reference->areas[0];
  const Value value = request.IsOmitted(1) ? Value::Empty() : request.ValueAt(1);
  if (value.IsArray())
    sheet->WriteResult(area, value);
  else
    sheet->Set(area, value);
  return Value::Boolean(true);
}

}  // namespace qcalc
