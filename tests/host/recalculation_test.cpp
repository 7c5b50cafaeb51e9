// Formula cells: order, what is calculated anew, circles, spilled arrays.
#include "host/calculation/recalculation.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

#include "host/calculation/dependencies.h"
#include "host/values/value_order.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class RecalculationTest : public ModelTest {
 protected:
  /// The error, or nothing.
  std::string Calculate() {
    try {
      Recalculate(workbooks, context);
      return "";
    } catch (const FormulaError& error) {
      return error.what();
    }
  }
  /// Calculates and says what the cells hold.
  std::string After(std::string_view reference) {
    const std::string error = Calculate();
    return error.empty() ? Held(reference) : "!" + error;
  }
};

TEST_F(RecalculationTest, CalculatesPrecedentsFirst) {
  Set("D1", "5");
  SetFormula("A1", "=B1*2");
  SetFormula("B1", "=Data!C1+1");
  SetFormula("Data!C1", "=SUM(Sheet1!D1:D9)");
  EXPECT_EQ(After("A1:B1"), "{12,6}");
  Set("D3", "1");
  EXPECT_EQ(After("A1"), "14");
  // A chain much longer than the stack would bear, its end first.
  constexpr int kLength = 20'000;
  SetFormula("F" + std::to_string(kLength), "=1");
  for (int row = kLength - 1; row > 0; --row)
    SetFormula("F" + std::to_string(row), "=F" + std::to_string(row + 1) + "+1");
  EXPECT_EQ(After("F1"), std::to_string(kLength));
}

TEST_F(RecalculationTest, CalculatesOnlyWhatChanged) {
  SetFormula("A1", "=GET.REF(1)");
  SetFormula("B1", "=GET.REF(C1)+0");
  Calculate();
  EXPECT_EQ(addin.lastCaller, (Reference{sheet.Id(), {AreaOf("B1")}}));
  Calculate();
  EXPECT_EQ(addin.calls, 2);
  Set("C1", "4");
  EXPECT_EQ(After("B1"), "4");
  EXPECT_EQ(addin.calls, 3);
  names[XTEXT("x")] = *ParseLiteral("8");
  SetFormula("D1", "=GET.REF(X)");
  EXPECT_EQ(After("D1"), "8");
  names[XTEXT("x")] = *ParseLiteral("9");
  NoteNameChange(workbooks, XTEXT("X"));
  EXPECT_EQ(After("D1"), "9");
  EXPECT_EQ(addin.calls, 5);
  SetFormula("E1", "=GET.NEXT()");
  SetFormula("E2", "=E1*10");
  EXPECT_EQ(After("E1:E2"), "{1;10}");
  EXPECT_EQ(After("E1:E2"), "{2;20}");
}

TEST_F(RecalculationTest, ReportsCircles) {
  SetFormula("A1", "=B1+1");
  SetFormula("B1", "=SUM(A1:A3)");
  EXPECT_EQ(Calculate(), "circular reference: [Book1]Sheet1!A1 -> [Book1]Sheet1!B1 -> [Book1]Sheet1!A1");
  EXPECT_NE(Calculate(), "");
  Set("A1", "1");
  EXPECT_EQ(After("B1"), "1");
  SetFormula("C3", "=SUM(C:C)");
  EXPECT_EQ(Calculate(), "circular reference: [Book1]Sheet1!C3 -> [Book1]Sheet1!C3");
  Set("C3", "empty");
  SetFormula("D1", "=COUNTA(1,A1:A2)");
  EXPECT_EQ(Calculate(), "[Book1]Sheet1!D1: COUNTA at column 2 is not offered yet");
  // Cells that it would fill itself.
  SetFormula("D1", "=SEQUENCE(3)+D2");
  EXPECT_EQ(Calculate().substr(0, 18), "circular reference");
}

TEST_F(RecalculationTest, SpillsAndTakesBack) {
  Set("D1", "2");
  SetFormula("F1", "=SUM(B1:B9)");
  SetFormula("A1", "=C2*10");  // of a spill that comes later, and not its own cell
  SetFormula("B1", "=SEQUENCE(D1,2)");
  EXPECT_EQ(After("B1:C3"), "{1,2;3,4;empty,empty}");
  EXPECT_EQ(Held("F1"), "4");
  EXPECT_EQ(Held("A1"), "40");
  Set("D1", "3");
  EXPECT_EQ(After("B1:C3"), "{1,2;3,4;5,6}");
  EXPECT_EQ(Held("F1"), "9");
  Set("D1", "1");
  EXPECT_EQ(After("B1:C3"), "{1,2;empty,empty;empty,empty}");
  EXPECT_EQ(Held("F1"), "1");
  // A value in the way, and its removal.
  Set("D1", "2");
  Calculate();
  Set("C2", "\"mine\"");
  EXPECT_EQ(After("B1:C2"), "{#SPILL!,empty;empty,\"mine\"}");
  EXPECT_EQ(Held("F1"), "#SPILL!");
  Set("C2", "empty");
  EXPECT_EQ(After("B1:C2"), "{1,2;3,4}");
  // Another formula's array in the way, which then gives way.
  Set("D1", "3");
  SetFormula("A3", "={8,9}");
  EXPECT_EQ(After("A3:C3"), "{#SPILL!,5,6}");
  Set("D1", "2");
  EXPECT_EQ(After("A3:C3"), "{8,9,empty}");
  // Without its formula the spilled cells go.
  Set("B1", "5");
  EXPECT_EQ(After("B1:C2"), "{5,empty;empty,empty}");
  SetFormula("XFD1", "={1,2}");
  EXPECT_EQ(After("XFD1"), "#SPILL!");
}

// Random values and formulas in 25 cells: after every recalculation that finds no circle, each formula's cells hold
// what the formula gives when it is evaluated afresh.
TEST_F(RecalculationTest, CellsHoldWhatTheirFormulasGive) {
  std::mt19937 random(123);
  const auto cell = [&] {
    return std::string(1, static_cast<char>('A' + random() % 5)) + std::to_string(1 + random() % 5);
  };
  int settled = 0;
  for (int step = 0; step < 4'000; ++step) {
    const std::string target = cell(), first = cell(), last = cell();
    const std::string formulas[] = {"=" + first + "+1", "=SEQUENCE(" + first + ",2)",
                                    "=SUM(" + first + ":" + last + ")", "=SEQUENCE(2)*" + first};
    if (const auto choice = random() % 6; choice < std::size(formulas))
      SetFormula(target, formulas[choice]);
    else
      Set(target, choice == 4 ? "2" : "empty");
    if (!Calculate().empty()) {
      Set(target, "empty");
      continue;
    }
    ++settled;
    for (const auto& [position, formula] : sheet.Formulas()) {
      const Value value = Dereference(Evaluate(formula.formula, context), workbooks);
      const Area own = Area::OfCell(position.row, position.column);
      const Value held = sheet.Read(formula.spill.value_or(own));
      const bool isOneCell = value.IsArray() && !formula.spill;
      ASSERT_TRUE(formula.blocked ? value.IsArray() && held.IsError()
                                  : SameValue(isOneCell ? Value::OfCell(value.AsArray()->At(0, 0)) : value, held))
          << step << ": " << formula.formula.Text();
    }
  }
  EXPECT_GT(settled, 2'000);
}

}  // namespace
}  // namespace qcalc
