// Callbacks that tell about the caller, about cells, sheets and books.
#include "host/api/coercion.h"
#include "host/callbacks/handlers.h"
#include "host/formulas/reference_text.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr double kDefaultRowHeight = 15;

Value TextValue(const std::string& text) { return Value::Text(*FromUtf8(text)); }

/// The value of one cell, as the place of the callback may read it.
Value ReadCell(const CallbackRequest& request, const Sheet& sheet, const Area& cell) {
  request.CheckCalculated({sheet.Id(), {cell}});
  return Value::OfCell(sheet.Get(cell.firstRow, cell.firstColumn));
}

Value FormulaText(const CallbackRequest& request, const Sheet& sheet, const Area& cell) {
  if (const FormulaCell* formula = sheet.FindFormula({cell.firstRow, cell.firstColumn}))
    return TextValue(formula->formula.Text());
  const auto text = CoerceValue(ReadCell(request, sheet, cell), xltypeStr, {});
  return text ? std::get<Value>(*text) : ReadCell(request, sheet, cell);
}

CallbackAnswer CellInformation(CallbackRequest& request, int type, const Sheet& sheet, const Area& cell) {
  switch (type) {
    case 1:
      return TextValue(QualifiedSheetName(sheet.FullName()) + "!" + AreaToText(cell, true));
    case 2:
      return Value::Number(cell.firstRow + 1);
    case 3:
      return Value::Number(cell.firstColumn + 1);
    case 5:
      return ReadCell(request, sheet, cell);
    case 6:
      return FormulaText(request, sheet, cell);
    case 17:
      return Value::Number(sheet.IsRowHidden(cell.firstRow) ? 0 : kDefaultRowHeight);
    case 48:
      return Value::Boolean(sheet.FindFormula({cell.firstRow, cell.firstColumn}) != nullptr);
    case 62:
      return Value::Text(sheet.FullName());
    case 66:
      return Value::Text(sheet.ItsBook().Name());
    default:
      return request.NotOffered("type " + std::to_string(type));
  }
}

}  // namespace

CallbackAnswer HandleCaller(CallbackRequest& request) {
  const Reference& caller = request.Evaluation().caller;
  if (request.context.place == Place::kCommand || caller.areas.empty()) return Value::Error(xlerrRef);
  return Value::OfReference(caller);
}

CallbackAnswer HandleReftext(CallbackRequest& request) {
  const Reference* reference = request.ReferenceAt(0);
  if (!reference) return request.WrongArgument(1, "a reference");
  const Sheet* sheet = request.Evaluation().workbooks->FindSheet(reference->sheet);
  if (!sheet) return CallbackAnswer::Failure(xlretFailed);
  const bool isA1 = request.BooleanAt(1).value_or(false);
  std::string text;
  for (const Area& area : reference->areas) {
    if (!text.empty()) text += ",";
    text += QualifiedSheetName(sheet->FullName()) + "!" + (isA1 ? AreaToText(area, true) : AreaToR1C1(area));
  }
  return TextValue(text);
}

CallbackAnswer HandleGetCell(CallbackRequest& request) {
  const auto type = request.NumberAt(0);
  if (!type) return request.WrongArgument(1, "a number");
  if (!request.IsOmitted(1) && !request.ReferenceAt(1)) return request.WrongArgument(2, "a reference");
  const Sheet* sheet = request.SheetAt(1);
  if (!sheet) return CallbackAnswer::Failure(xlretFailed);
  const Reference* reference = request.ReferenceAt(1);
  const Area area = reference ? reference->areas[0] : Area{};
  const Area cell = Area::OfCell(area.firstRow, area.firstColumn);
  return CellInformation(request, static_cast<int>(*type), *sheet, cell);
}

CallbackAnswer HandleGetDocument(CallbackRequest& request) {
  const auto type = request.NumberAt(0);
  if (!type) return request.WrongArgument(1, "a number");
  if (!request.IsOmitted(1) && !request.TextAt(1)) return request.WrongArgument(2, "a sheet's name");
  const Sheet* sheet = request.SheetAt(1);
  if (!sheet) return Value::Error(xlerrNA);
  const std::optional<Area> used = sheet->UsedArea();
  switch (static_cast<int>(*type)) {
    case 3:
      return Value::Number(1);
    case 9:
      return Value::Number(used ? used->firstRow + 1 : 0);
    case 10:
      return Value::Number(used ? used->lastRow + 1 : 0);
    case 11:
      return Value::Number(used ? used->firstColumn + 1 : 0);
    case 12:
      return Value::Number(used ? used->lastColumn + 1 : 0);
    case 20:
      return Value::Boolean(false);
    case 76:
      return Value::Text(sheet->FullName());
    default:
      return request.NotOffered("type " + std::to_string(static_cast<int>(*type)));
  }
}

CallbackAnswer HandleGetWorkbook(CallbackRequest& request) {
  const auto type = request.NumberAt(0);
  if (!type) return request.WrongArgument(1, "a number");
  if (!request.IsOmitted(1) && !request.TextAt(1)) return request.WrongArgument(2, "a book's name");
  const Book* book = request.IsOmitted(1) ? &request.Evaluation().sheet->ItsBook()
                                          : request.Evaluation().workbooks->FindBook(*request.TextAt(1));
  if (!book) return Value::Error(xlerrNA);
  const auto& sheets = book->Sheets();
  switch (static_cast<int>(*type)) {
    case 1: {
      ArrayBuilder names(1, static_cast<std::int32_t>(sheets.size()));
      for (std::size_t i = 0; i < sheets.size(); ++i) {
        const XString name = sheets[i]->FullName();
        names.Set(0, static_cast<std::int32_t>(i), CellView::Text(name));
      }
      return Value::OfArray(names.Finish());
    }
    case 4:
      return Value::Number(static_cast<double>(sheets.size()));
    case 16:
      return Value::Text(book->Name());
    default:
      return request.NotOffered("type " + std::to_string(static_cast<int>(*type)));
  }
}

CallbackAnswer HandleVolatile(CallbackRequest& request) {
  const auto isVolatile = request.BooleanAt(0);
  if (!request.IsOmitted(0) && !isVolatile) return request.WrongArgument(1, "a boolean");
  request.context.isVolatile = isVolatile.value_or(true);
  return Value::Boolean(true);
}

}  // namespace qcalc
