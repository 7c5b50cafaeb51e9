#include "host/addin/workbook_macros.h"

#include <algorithm>
#include <vector>

#include "host/calculation/evaluator.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {

namespace {

// Rows of a sheet from the topmost of a reference on, in the columns of all its areas; or columns from
// the leftmost on, in its rows. Lines count from the first, which is 0.
class Lines {
 public:
  Lines(const Sheet& sheet, const Reference& reference, bool areRows)
      : sheet_(sheet), reference_(reference), areRows_(areRows) {
    const auto firstOf = [areRows](const Area& area) { return areRows ? area.firstRow : area.firstColumn; };
    first_ = firstOf(reference.areas[0]);
    for (const Area& area : reference.areas) first_ = std::min(first_, firstOf(area));
  }

  // Calls `visitor(line)` for each cell that is not empty; a formula's never is.
  template <typename Visitor>
  void VisitFilled(Visitor&& visitor) const {
    for (const Area& area : reference_.areas)
      sheet_.VisitUsed(
          areRows_ ? Area{first_, kXlMaxRows - 1, area.firstColumn, area.lastColumn}
                   : Area{area.firstRow, area.lastRow, first_, kXlMaxColumns - 1},
          [&](std::int32_t row, std::int32_t column, const CellView&) { visitor((areRows_ ? row : column) - first_); });
  }

  bool IsHidden(std::int32_t line) const {
    return areRows_ ? sheet_.IsRowHidden(first_ + line) : sheet_.IsColumnHidden(first_ + line);
  }

  std::int32_t CountToLastFilled() const {
    std::int32_t count = 0;
    VisitFilled([&](std::int32_t line) { count = std::max(count, line + 1); });
    return count;
  }

  // A gap is a visible line that is empty. Hidden ones before it count where a visible one follows.
  std::int32_t CountToGap() const {
    std::vector<bool> isFilled(static_cast<std::size_t>(CountToLastFilled()));
    VisitFilled([&](std::int32_t line) { isFilled[static_cast<std::size_t>(line)] = true; });
    std::int32_t count = 0;
    for (std::int32_t line = 0; line < static_cast<std::int32_t>(isFilled.size()); ++line) {
      if (IsHidden(line)) continue;
      if (!isFilled[static_cast<std::size_t>(line)]) break;
      count = line + 1;
    }
    return count;
  }

  std::int32_t CountToLastUsed() const {
    const auto used = sheet_.UsedArea();
    return used ? std::max((areRows_ ? used->lastRow : used->lastColumn) - first_ + 1, 0) : 0;
  }

 private:
  const Sheet& sheet_;
  const Reference& reference_;
  bool areRows_;
  std::int32_t first_ = 0;
};

// A formula that was entered into several cells stands in each of them.
bool HoldsFormula(const Sheet& sheet, const Area& area) {
  bool found = false;
  sheet.VisitUsed(area, [&](std::int32_t row, std::int32_t column, const CellView&) {
    if (found) return;
    const auto writer = sheet.WriterOf({row, column});
    found = writer && (*writer == CellPosition{row, column} || sheet.FindFormula(*writer)->form == FormulaForm::kArray);
  });
  return found;
}

// A text that evaluates itself must not use up the stack.
constexpr int kDeepestEvaluation = 16;
thread_local int evaluationsUnderWay = 0;

struct EvaluationUnderWay {
  EvaluationUnderWay() { ++evaluationsUnderWay; }
  ~EvaluationUnderWay() { --evaluationsUnderWay; }
  EvaluationUnderWay(const EvaluationUnderWay&) = delete;
  EvaluationUnderWay& operator=(const EvaluationUnderWay&) = delete;
};

// The values of a reference's cells once they are calculated; several areas have none together.
Value PlainValue(const Value& value, const EvaluationContext& context) {
  if (value.IsReference()) CheckCalculated(value.AsReference(), *context.workbooks);
  return Dereference(value, *context.workbooks);
}

// On the sheet of the calling cell.
Value EvaluateWritten(const Value& operand, const EvaluationContext& context) {
  constexpr std::size_t kLongestFormula = 255;
  const Value written = PlainValue(operand, context);
  if (written.IsNumber() || written.IsBoolean()) return written;
  if (!written.IsText()) return Value::Error(xlerrValue);
  XStringView text = written.AsText();
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  if (text.starts_with('=')) text.remove_prefix(1);
  if (text.empty() || text.size() > kLongestFormula || evaluationsUnderWay >= kDeepestEvaluation)
    return Value::Error(xlerrValue);
  const Parsed<Formula> formula = ParseFormula(ToUtf8(text));
  if (!formula) return Value::Error(xlerrValue);
  const EvaluationUnderWay underWay;
  return PlainValue(Evaluate(*formula, context), context);
}

struct WorkbookMacro {
  XStringView name;
  Value (*call)(const Value& operand, const EvaluationContext& context);
};

template <std::int32_t (Lines::*count)() const, bool areRows>
Value CallCount(const Value& operand, const EvaluationContext& context) {
  const Sheet* sheet = operand.IsReference() ? context.workbooks->FindSheet(operand.AsReference().sheet) : nullptr;
  if (!sheet) return Value::Error(xlerrValue);
  return Value::Number((Lines(*sheet, operand.AsReference(), areRows).*count)());
}

Value CallHasFormula(const Value& operand, const EvaluationContext& context) {
  const Sheet* sheet = operand.IsReference() ? context.workbooks->FindSheet(operand.AsReference().sheet) : nullptr;
  if (!sheet) return Value::Error(xlerrValue);
  const std::vector<Area>& areas = operand.AsReference().areas;
  return Value::Boolean(
      std::any_of(areas.begin(), areas.end(), [&](const Area& area) { return HoldsFormula(*sheet, area); }));
}

constexpr WorkbookMacro kMacros[] = {{XTEXT("COUNTROWSvba"), CallCount<&Lines::CountToLastFilled, true>},
                                     {XTEXT("COUNTCOLSvba"), CallCount<&Lines::CountToLastFilled, false>},
                                     {XTEXT("COUNTCONTIGROWSvba"), CallCount<&Lines::CountToGap, true>},
                                     {XTEXT("COUNTCONTIGCOLSvba"), CallCount<&Lines::CountToGap, false>},
                                     {XTEXT("COUNTUSEDROWSvba"), CallCount<&Lines::CountToLastUsed, true>},
                                     {XTEXT("COUNTUSEDCOLSvba"), CallCount<&Lines::CountToLastUsed, false>},
                                     {XTEXT("HASFORMULAvba"), CallHasFormula},
                                     {XTEXT("EVALvba"), EvaluateWritten}};

const WorkbookMacro* FindMacro(XStringView name) {
  const auto found = std::find_if(std::begin(kMacros), std::end(kMacros),
                                  [&](const WorkbookMacro& macro) { return EqualsIgnoringCase(macro.name, name); });
  return found == std::end(kMacros) ? nullptr : found;
}

}  // namespace

bool IsWorkbookMacro(XStringView name) { return FindMacro(name) != nullptr; }

Value CallWorkbookMacro(XStringView name, const Value& operand, const EvaluationContext& context) {
  return FindMacro(name)->call(operand, context);
}

}  // namespace qcalc
