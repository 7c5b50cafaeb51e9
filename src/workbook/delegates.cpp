// Functions whose work is done in the workbook's own language, by the add-in's companion: Excel's C API does not reach
// what they look at.
//
// Serves COUNTROWS2, COUNTCOLS2, COUNTCONTIGROWS2, COUNTCONTIGCOLS2, COUNTUSEDROWS2, COUNTUSEDCOLS2, EVAL2,
// HASFORMULA2.
#include "frame/callbacks/callbacks.h"
#include "frame/convert/argument.h"
#include "implementations/workbook.h"

namespace quillmere::workbook {
namespace {

/// What the companion's function answers; never set when Excel could not call it. Its name is the registered one with
/// "vba" in the place of the 2 at the end.
CXlOper AskCompanion(XStringView name, const CXlArgument& argument) {
  XString delegate(name.substr(0, name.size() - 1));
  delegate += XTEXT("vba");
  CXlOper answer;
  TryCallExcel(answer, xlUDF, CXlOper::Text(delegate), argument.Value());
  return answer;
}

}  // namespace

void Functions::Delegate(CXlOper& result, XStringView name, const CXlArgument& theRange) {
  result = AskCompanion(name, theRange);
}

void Functions::DelegateToArray(CXlOper& result, XStringView name, const CXlArgument& stringFormula) {
  result = AskCompanion(name, stringFormula);
  if (!result.IsArray()) return;
  const CXlCells cells = result.Cells();
  if (cells.Count() == 1) result = CXlOper::FromCell(*cells.first);
}

}  // namespace quillmere::workbook
