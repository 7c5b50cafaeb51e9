// xlfGetWorkspace: what the host says about itself.
#include <iterator>

#include "host/callbacks/handlers.h"

namespace qcalc {
namespace {

/// The row array of international settings: Excel's 45 items, in US English but for the separators.
Value InternationalSettings(NumberMarks marks) {
  const bool isComma = marks.decimal == ',';
  const XString decimals(1, marks.decimal);
  const XString thousands(1, marks.Thousands());
  const XString list = isComma ? XTEXT(";") : XTEXT(",");
  const XString arrayColumn = isComma ? XTEXT("\\") : XTEXT(",");
  const auto text = [](XStringView view) { return CellView::Text(view); };
  const auto number = [](double value) { return CellView::Number(value); };
  const auto truth = [](bool value) { return CellView::Boolean(value); };
  const CellView items[] = {
      number(1),         number(1),                                             // 1, 2: countries
      text(decimals),    text(thousands),  text(list),                          // 3 to 5: separators
      text(XTEXT("R")),  text(XTEXT("C")), text(XTEXT("r")), text(XTEXT("c")),  // 6 to 9: row and column
      text(XTEXT("[")),  text(XTEXT("]")), text(XTEXT("{")), text(XTEXT("}")),  // 10 to 13: brackets and braces
      text(arrayColumn), text(XTEXT(";")), text(XTEXT("@")),                    // 14 to 16: array separators
      text(XTEXT("/")),  text(XTEXT(":")),                                      // 17, 18: date and time
      text(XTEXT("y")),  text(XTEXT("m")), text(XTEXT("d")), text(XTEXT("h")),
      text(XTEXT("m")),  text(XTEXT("s")), text(XTEXT("$")), text(XTEXT("General")),  // 25, 26
      number(2),         number(0),        number(2),     // 27 to 29: decimals and the form of negative currency
      number(3),         number(3),                       // 30, 31: short names of months and weekdays
      number(0),                                          // 32: month, day, year
      truth(false),      truth(false),     truth(false),  // 33 to 35: 24 hours, other language, metric
      truth(true),       truth(false),     truth(true),      truth(true),
      truth(false),  // 36 to 45: currency, zeros, dates
      truth(true),       truth(false),     truth(false),     truth(true),
      truth(false),
  };
  constexpr int kItems = 45;
  static_assert(std::size(items) == kItems);
  ArrayBuilder row(1, kItems);
  for (int i = 0; i < kItems; ++i) row.Set(0, i, items[i]);
  return Value::OfArray(row.Finish());
}

/// Module, procedure and type text of everything registered; #N/A when nothing is.
Value RegisteredFunctions(const HostState& host) {
  const std::vector<const RegisteredFunction*> functions = host.registry.All();
  if (functions.empty()) return Value::Error(xlerrNA);
  const XString module = host.library->PathText();
  ArrayBuilder rows(static_cast<std::int32_t>(functions.size()), 3);
  for (std::int32_t r = 0; r < rows.Rows(); ++r) {
    const RegisteredFunction& function = *functions[static_cast<std::size_t>(r)];
    rows.Set(r, 0, CellView::Text(module));
    rows.Set(r, 1, CellView::Text(function.procedure));
    rows.Set(r, 2, CellView::Text(function.typeText));
  }
  return Value::OfArray(rows.Finish());
}

}  // namespace

CallbackAnswer HandleGetWorkspace(CallbackRequest& request) {
  const auto type = request.NumberAt(0);
  if (!type) return request.WrongArgument(1, "a number");
  const HostState& host = request.Host();
  switch (static_cast<int>(*type)) {
    case 1:
      return Value::Text(XTEXT("Windows (64-bit) NT 10.00"));
    case 2:
      return Value::Text(host.settings.version);
    case 4:
      return Value::Boolean(false);
    case 37:
      return InternationalSettings(host.settings.marks);
    case 40:
      return Value::Boolean(true);
    case 44:
      return RegisteredFunctions(host);
    default:
      return request.NotOffered("type " + std::to_string(static_cast<int>(*type)));
  }
}

}  // namespace qcalc
