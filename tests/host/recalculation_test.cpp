// Formula cells: order, what is calculated anew, circles, spilled arrays.
#include "host/calculation/recalculation.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

#include "host/addin/threads.h"
#include "host/calculation/dependencies.h"
#include "host/values/value_order.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class RecalculationTest : public ModelTest {};

TEST_F(RecalculationTest, CalculatesPrecedentsFirst) {
  Follow("D1 -> 5 | A1 -> =B1*2 | B1 -> =Data!C1+1 | Data!C1 -> =SUM(Sheet1!D1:D9)", "A1:B1 -> {12,6}");
  Follow("D3 -> 1", "A1 -> 14");
  // A chain much longer than the stack would bear, its end first.
  constexpr int kLength = 20'000;
  for (int row = kLength; row > 0; --row)
    SetFormula("F" + std::to_string(row), row == kLength ? "=1" : "=F" + std::to_string(row + 1) + "+1");
  Follow("", "F1 -> " + std::to_string(kLength));
}

TEST_F(RecalculationTest, CalculatesOnlyWhatChanged) {
  Follow("A1 -> =GET.REF(1) | B1 -> =GET.REF(C1)+0", "B1 -> 0");
  EXPECT_EQ(addin.lastCaller, (Reference{sheet.Id(), {AreaOf("B1")}}));
  Follow("", "B1 -> 0");
  EXPECT_EQ(addin.calls, 2);
  Follow("C1 -> 4", "B1 -> 4");
  EXPECT_EQ(addin.calls, 3);
  names[XTEXT("x")] = Value::Number(8);
  Follow("D1 -> =GET.REF(X)", "D1 -> 8");
  names[XTEXT("x")] = Value::Number(9);
  NoteNameChange(workbooks, XTEXT("X"));
  Follow("", "D1 -> 9");
  EXPECT_EQ(addin.calls, 5);
  Follow("E1 -> =GET.NEXT() | E2 -> =E1*10", "E1:E2 -> {1;10}");
  Follow("", "E1:E2 -> {2;20}");
}

TEST_F(RecalculationTest, ReportsCircles) {
  const char* const circle = "!circular reference: [Book1]Sheet1!A1 -> [Book1]Sheet1!B1 -> [Book1]Sheet1!A1";
  Follow("A1 -> =B1+1 | B1 -> =SUM(A1:A3)", circle);
  Follow("", circle);
  Follow("A1 -> 1", "B1 -> 1");
  Follow("C3 -> =SUM(C:C)", "!circular reference: [Book1]Sheet1!C3 -> [Book1]Sheet1!C3");
  Follow("C3 -> empty | D1 -> =NA(1,A1:A2)", "![Book1]Sheet1!D1: NA at column 2 takes 0 arguments, found 2");
  // Cells that it would fill itself.
  Follow("D1 -> =SEQUENCE(3)+D2", "!circular reference: [Book1]Sheet1!D1 -> [Book1]Sheet1!D1");
}

TEST_F(RecalculationTest, BranchesNotTakenMakeNoCircle) {
  Follow("A1 -> =IF(C1,B1,1) | B1 -> =IF(C1,2,A1+1) | D1 -> =A1+B1", "A1 -> 1 | B1 -> 2 | D1 -> 3");
  Follow("C1 -> TRUE", "A1 -> 2 | B1 -> 2 | D1 -> 4");
  Follow("A1 -> =IF(C1,B1,A1) | B1 -> =IF(C1,A1,7)",
         "!circular reference: [Book1]Sheet1!A1 -> [Book1]Sheet1!B1 -> [Book1]Sheet1!A1");
  Follow("C1 -> FALSE | A1 -> =IF(C1,A1,B1)", "A1 -> 7 | D1 -> 14");
}

// What is entered as files have it: with values that count until there are new ones.
TEST_F(RecalculationTest, ArraysFillWhatTheirFormSays) {
  const auto put = [&](std::string_view cell, std::string_view formula, FormulaForm form, std::string_view fills) {
    const Area at = AreaOf(cell);
    sheet.PutFormula({at.firstRow, at.firstColumn}, *ParseFormula(formula), form, AreaOf(fills));
  };
  Set("B1:D6", "9");
  put("B1", "=SEQUENCE(2,2)", FormulaForm::kArray, "B1:C3");
  put("B4", "=SEQUENCE(2)", FormulaForm::kSpilling, "B4:B6");
  put("C4", "={5,6}", FormulaForm::kSingle, "C4");
  put("C6", "=SUM(B1:C5)", FormulaForm::kSingle, "C6");
  put("D6", "={1;2}", FormulaForm::kSpilling, "D6");
  Follow("", "B1:C3 -> {1,2;3,4;#N/A,#N/A} | B4:D6 -> {1,5,9;2,9,9;empty,#N/A,1} | D7 -> 2");
  EXPECT_EQ(addin.calls, 0);
  Follow("B5 -> \"x\"", "B4 -> #SPILL!");
}

TEST_F(RecalculationTest, ManyThatReadTheSameAskFewTimes) {
  constexpr int kRows = 5'000;
  // Each of 5,000 reads 5,000 that are calculated from the last one on.
  for (int row = kRows; row > 0; --row)
    SetFormula("A" + std::to_string(row), row == kRows ? "=1" : "=A" + std::to_string(row + 1) + "+0");
  SetFormula("B1:B5000", "=COUNTA(C:C,A1:A5000)");
  SetFormula("C1:C3", "=COUNTA(A1:A5000)");
  Follow("", "B1 -> 5003 | B5000 -> 5003 | C3 -> 5000");
}

TEST_F(RecalculationTest, SeveralThreadsGiveWhatOneGives) {
  Set("Data!A1:A3000", "2");
  SetFormula("A1:A5000", "=SUM(Data!A1:A3000)");
  SetFormula("B1:B5000", "=A1+GET.NEXT()*0");
  SetFormula("C1:C50", "=SEQUENCE(1,3)*SUM(B1:B5000)");
  MainThread main;
  CalculationThreads threads(main, 4);
  EXPECT_EQ(Recalculate(workbooks, context, {nullptr, &threads}).calculated, 10'050);
  EXPECT_EQ(Held("A5000:C5000"), "{6000,6000,empty}");
  EXPECT_EQ(Held("C50:E50"), "{30000000,60000000,90000000}");
}

TEST_F(RecalculationTest, SpillsWhereItIsFree) {
  // A1 is of a spill that comes later, and not its own cell.
  Follow("D1 -> 2 | F1 -> =SUM(B1:B9) | A1 -> =C2*10 | B1 -> =SEQUENCE(D1,2)",
         "B1:C3 -> {1,2;3,4;empty,empty} | A1 -> 40");
  // A value in the way, and its removal.
  Follow("C2 -> \"mine\"", "B1:C2 -> {#SPILL!,empty;empty,\"mine\"} | F1 -> #SPILL!");
  Follow("C2 -> empty", "B1:C2 -> {1,2;3,4} | F1 -> 4");
  Follow("XFD1 -> ={1,2}", "XFD1 -> #SPILL!");
}

TEST_F(RecalculationTest, AFormulaThatCannotBeCalculatedSpoilsNoOther) {
  Follow("A1 -> =IRR(1) | A2 -> =A1+1 | B1 -> =B2 | B2 -> =B1 | B3 -> =B2 | C1 -> =D1*2 | D1 -> =1+1",
         "![Book1]Sheet1!A1: IRR at column 2 is a function of Excel that this host does not offer");
  EXPECT_EQ(Held("C1"), "4");
  for (const auto& [cell, isDirty] : CasesOf("A1 -> 1 | A2 -> 1 | B1 -> 1 | B2 -> 1 | B3 -> 1 | C1 -> 0 | D1 -> 0"))
    EXPECT_EQ(std::to_string(sheet.FirstUncalculated(AreaOf(cell)).has_value()), isDirty) << cell;
  Follow("A1 -> 1 | B2 -> 2", "A2 -> 2 | B1 -> 2 | B3 -> 2");
}

TEST_F(RecalculationTest, ASheetMadeLaterIsFound) {
  Follow("A1 -> =SUM(Later!A1:A2) | B1 -> =A1+1 | C1 -> =[Other]Data!A1", "A1 -> #REF! | B1 -> #REF! | C1 -> #REF!");
  sheet.ItsBook().SheetNamed(XTEXT("later"));
  Follow("", "A1 -> 0 | B1 -> 1 | C1 -> #REF!");
  workbooks.BookNamed(XTEXT("other")).SheetNamed(XTEXT("Data"));
  Follow("Later!A2 -> 3", "A1 -> 3 | B1 -> 4 | C1 -> 0");
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
