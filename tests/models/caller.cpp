#include "tests/models/caller.h"

#include <gtest/gtest.h>

#include "host/addin/evaluation_watch.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc::models {
namespace {

Reference ReferenceTo(const CallingPlace& place) {
  return {place.sheet, {Area::OfSize(place.row, place.column, place.rows, place.columns)}};
}

}  // namespace

Caller::Caller(Session& session) : session_(session) {
  Workbooks& workbooks = session.ItsWorkbooks();
  const IDSHEET calc = workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Calc")).Id();
  const IDSHEET other = workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Other")).Id();
  const IDSHEET far = workbooks.BookNamed(XTEXT("Book2")).SheetNamed(XTEXT("Calc")).Id();
  places_ = {{"Book1", calc, 0, 0, 1}, {"Book1", calc, 0, 3, 1},  {"Book1", calc, 6, 2, 1}, {"Book1", other, 6, 2, 1},
             {"Book2", far, 6, 2, 1},  {"Book1", calc, 0, 5, 40}, {"Book2", far, 3, 0, 9}};
}

Value Caller::PutInSheet(const ArrayPtr& table, std::int32_t rowsBelow) {
  ++tables_;
  if (Sheet* sheet = session_.ItsWorkbooks().FindSheet(lastTable_.sheet)) {
    sheet->Clear(lastTable_.areas[0]);
    sheet->HideRows(0, kXlMaxRows - 1, false);
  }
  Sheet& sheet = tables_ % 3 == 0 ? session_.ItsWorkbooks().BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Data"))
                                  : session_.CurrentSheet();
  const std::int32_t rows = table->Rows() + rowsBelow;
  Area area{.firstRow = tables_ % 7, .firstColumn = tables_ % 5};
  if (tables_ % 11 == 0) area.firstRow = kXlMaxRows - rows;
  area.lastRow = rowsBelow > 3 ? kXlMaxRows - 1 : area.firstRow + rows - 1;
  area.lastColumn = area.firstColumn + table->Columns() - 1;
  sheet.Set({area.firstRow, area.firstRow, area.firstColumn, area.firstColumn}, Value::OfArray(table));
  session_.Host().settings.shortReferences = tables_ % 2 == 0;
  lastTable_ = {sheet.Id(), {area}};
  return Value::OfReference(lastTable_);
}

void Caller::HideRows(const std::vector<bool>& isHidden) {
  Sheet& sheet = *session_.ItsWorkbooks().FindSheet(lastTable_.sheet);
  std::int32_t row = lastTable_.areas[0].firstRow;
  for (const bool hidden : isHidden) sheet.HideRows(row, row, hidden), ++row;
}

Value Caller::Call(XStringView function, const std::vector<Value>& operands, const CallingPlace& place) {
  return std::move(CallOnThreads(1, function, operands, place)[0]);
}

std::vector<Value> Caller::CallOnThreads(int threads, XStringView function, const std::vector<Value>& operands,
                                         const CallingPlace& place) {
  const auto* registered = static_cast<const RegisteredFunction*>(session_.ItsAddin().Find(function));
  if (!registered) throw AddinFailure(ToUtf8(function) + " is not registered");
  EXPECT_EQ(operands.size(), registered->operands.size()) << ToUtf8(function);
  std::vector<Value> passed = operands;
  for (std::size_t i = 0; i < operands.size(); ++i)
    if (registered->operands[i] != OperandKind::kReference) passed[i] = session_.Contents(operands[i]);
  const EvaluationContext context{&session_.ItsWorkbooks(), &session_.CurrentSheet(), &session_.Names(),
                                  &session_.ItsAddin(), ReferenceTo(place)};
  const EvaluationWatch watch(session_.Host(), false);
  std::vector<Value> results(static_cast<std::size_t>(threads));
  session_.Host().mainThread.RunOnThreads(threads, [&](int thread) {
    results[static_cast<std::size_t>(thread)] = session_.ItsAddin().Call(*registered, passed, context);
  });
  return results;
}

int Caller::Callbacks() const {
  int made = 0;
  for (const XlCallback& callback : kXlCallbacks) made += session_.Host().meter.Calls(callback);
  return made;
}

std::string Caller::Complaints() const {
  std::string all;
  for (const std::string& text : session_.Host().complaints.Take()) all += text + "; ";
  for (const std::string& text : session_.Host().loans.Close()) all += text + "; ";
  return all;
}

std::string Caller::Describe(XStringView function, const std::vector<Value>& operands,
                             const CallingPlace& place) const {
  std::string text = "=" + ToUtf8(function) + "(";
  for (const Value& operand : operands)
    text += (text.back() == '(' ? "" : ",") + (operand.IsMissing() ? "" : Print(operand));
  return text + ")\n  called from " + At(ReferenceTo(place));
}

std::string Caller::Print(const Value& value) const {
  return value.IsReference() ? At(value.AsReference()) : PrintLiteral(value);
}

std::string Caller::DescribeTable() const {
  return At(lastTable_) + (session_.Host().settings.shortReferences ? ", handed over as SRef" : ", handed over as Ref");
}

std::string Caller::At(const Reference& reference) const { return ReferenceToText(reference, session_.ItsWorkbooks()); }

}  // namespace qcalc::models
