// A workbook with one sheet and a small add-in of two functions, for tests of the model without a library.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

#include "host/calculation/evaluator.h"
#include "host/calculation/recalculation.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"
#include "tests/host/case_table.h"

namespace qcalc {

inline XString WideText(std::string_view text) { return FromUtf8(text).value(); }

/// GET.REF(U, U) gives its first operand back, GET.VALUE(Q, Q) likewise; both say what arrived. GET.NEXT gives 1, 2, 3.
class FakeAddin : public IAddinFunctions {
 public:
  FakeAddin() {
    reference_.name = XTEXT("GET.REF");
    reference_.operands = {OperandKind::kReference, OperandKind::kReference};
    value_.name = XTEXT("GET.VALUE");
    value_.operands = {OperandKind::kValue, OperandKind::kByValue};
    next_.name = XTEXT("GET.NEXT");
    next_.isVolatile = true;
  }
  const AddinFunction* Find(XStringView name) const override {
    for (const AddinFunction* function : {&reference_, &value_, &next_})
      if (EqualsIgnoringCase(name, function->name)) return function;
    return nullptr;
  }
  Value Call(const AddinFunction& function, std::span<const Value> operands,
             const EvaluationContext& context) override {
    ++calls;
    lastCaller = context.caller;
    lastOperands.assign(operands.begin(), operands.end());
    if (&function == &next_) return Value::Number(++counter_);
    return operands[0];
  }

  int calls = 0;
  Reference lastCaller;
  std::vector<Value> lastOperands;

 private:
  AddinFunction reference_, value_, next_;
  int counter_ = 0;
};

class ModelTest : public testing::Test {
 protected:
  ModelTest() : sheet(workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Sheet1"))) {
    context = {&workbooks, &sheet, &names, &addin, {}, {}};
  }

  Sheet& SheetAt(std::string_view reference) {
    return *workbooks.FindSheet(ResolveReference(*ParseReference(reference), workbooks, sheet).sheet);
  }
  Area AreaOf(std::string_view reference) { return ParseReference(reference)->area; }
  void Set(std::string_view reference, std::string_view literal) {
    const Parsed<Value> value = ParseLiteral(literal);
    ASSERT_TRUE(value) << literal << ": " << value.Error().ToString();
    SheetAt(reference).Set(AreaOf(reference), *value);
  }
  void SetFormula(std::string_view reference, std::string_view formula) {
    SheetAt(reference).SetFormula(AreaOf(reference), *ParseFormula(formula));
  }
  Value ValueOf(std::string_view formula) {
    const Parsed<Formula> parsed = ParseFormula(formula);
    if (!parsed) throw FormulaError(parsed.Error().ToString());
    return Evaluate(*parsed, context);
  }
  /// The result's literal; references as `@Sheet1!A1`; errors of parser and evaluator as `!message`.
  std::string Eval(std::string_view formula) {
    try {
      const Value value = ValueOf(formula);
      if (value.IsReference()) return "@" + ReferenceToText(value.AsReference(), workbooks);
      return PrintLiteral(value);
    } catch (const FormulaError& error) {
      return std::string("!") + error.what();
    }
  }
  /// Checks the formulas of a table (case_table.h) by what Eval says of them.
  void Check(std::string_view cases) {
    for (const auto& [formula, result] : CasesOf(cases)) EXPECT_EQ(Eval(formula), result) << formula;
  }
  /// Calculates all formulas; the error, or nothing.
  std::string Calculate() {
    const std::vector<CalculationFailure> failures = Recalculate(workbooks, context).failures;
    return failures.empty() ? "" : "!" + Describe(failures[0], workbooks);
  }
  /// Writes values and formulas into cells, calculates, and checks what cells hold then: two tables (case_table.h) of
  /// cells and their contents. The second may be an error in place of them.
  void Follow(std::string_view writes, std::string_view held) {
    for (const auto& [cells, content] : CasesOf(writes))
      content.starts_with('=') ? SetFormula(cells, content) : Set(cells, content);
    const std::string error = Calculate();
    if (!error.empty() || held.starts_with('!'))
      EXPECT_EQ(error, held) << "after " << writes;
    else
      for (const auto& [cells, content] : CasesOf(held))
        EXPECT_EQ(Held(cells), content) << cells << " after " << writes;
  }
  /// What a cell or an area holds.
  std::string Held(std::string_view reference) { return PrintLiteral(SheetAt(reference).Read(AreaOf(reference))); }

  Workbooks workbooks;
  Sheet& sheet;
  NamedValues names;
  FakeAddin addin;
  EvaluationContext context;
};

}  // namespace qcalc
