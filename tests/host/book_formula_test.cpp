// Formulas as books store them: what the parser takes and refuses, names and tables, moved and shared formulas, and
// what becomes of ranges where one value is wanted.
#include <gtest/gtest.h>

#include <string>

#include "host/calculation/formula_reads.h"
#include "host/calculation/function_profile.h"
#include "host/formulas/formula_pool.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class BookFormulaTest : public ModelTest {
 protected:
  BookFormulaTest() {
    Set("A1", "{1,2,3;4,5,6;7,8,9}");
    context.caller = {sheet.Id(), {Area::OfCell(1, 4)}};  // E2
  }
  void Define(std::string_view name, std::string_view formula, IDSHEET owner = 0) {
    sheet.ItsBook().Names().Define(WideText(name), owner, *ParseFormula(formula, FormulaDialect::kBook));
  }
  std::string EvalAs(FormulaForm form, std::string_view formula) {
    context.form = form;
    return Eval(formula);
  }
  /// Cases as those of Check, for formulas from before there were spills, in E2.
  void CheckSingle(std::string_view cases) {
    for (const auto& [formula, result] : CasesOf(cases))
      EXPECT_EQ(EvalAs(FormulaForm::kSingle, formula), result) << formula;
  }
  std::string ReadsOf(const Formula& formula, CellPosition caller = {1, 4}) {
    std::string reads;
    VisitReads(formula, sheet, caller, &names,
               [&](const SheetArea& read) { reads += (reads.empty() ? "" : " ") + AreaToText(read.area); });
    return reads;
  }
};

TEST_F(BookFormulaTest, OperatorsOnReferences) {
  Check(R"(
      =A1:B3 B2:C9 -> @[Book1]Sheet1!B2:B3 | =A:A 2:2 -> @[Book1]Sheet1!A2 | =A1 B1 -> #NULL! | =SUM(A1:C1 B1:B9) -> 2
      =(A1:A3,C1:C3) A2:C2 -> @([Book1]Sheet1!A2,[Book1]Sheet1!C2) | =A1:B2 B1:C2 B2 -> @[Book1]Sheet1!B2
      =A1 1 -> !line 1, column 5: expected an operator or the end of the formula, found '1'
      =@A1:A3 -> @[Book1]Sheet1!A2 | =@A1:C3 -> #VALUE! | =@{7,8} -> 7 | =-@$B:$B -> -5 | =_xlfn.SINGLE(A1:A3)*2 -> 8
      =D1# -> #REF! | =_xlfn.ANCHORARRAY(D1) -> #REF! | =#REF!A1+1 -> #REF! | =Sheet1!#REF! -> #REF!
      =SUM(#REF!$A$1:$B$2,1) -> #REF! | =TRUE()+FALSE() -> 1 | =1.5E+2 -> 150 | =Q1!A1:Q1!B2 -> #REF!)");
  SetFormula("D1", "=SEQUENCE(3)");
  EXPECT_EQ(Calculate(), "");
  Check("=D1# -> @[Book1]Sheet1!D1:D3 | =SUM(_xlfn.ANCHORARRAY(D1)) -> 6 | =D2# -> #REF! | =SUM(D1#:C1) -> 24");
}

TEST_F(BookFormulaTest, FunctionsByTheirOwner) {
  Check(R"(
      =_xll.GET.VALUE(A2) -> 4 | =_xlfn._xlws.SUM(1,2) -> 3 | =_xll.SUM(1) -> #NAME?
      =_xlfn.GET.VALUE(1) -> !GET.VALUE at column 2 is a function of Excel that this host does not offer
      =CHOOSE(2,A1,B1:B2) -> @[Book1]Sheet1!B1:B2 | =CHOOSE({2,1},"a","b") -> {"b","a"} | =CHOOSE(3,1,2) -> #VALUE!
      =IFERROR(1/0,5) -> 5 | =IFERROR({1,#N/A},9) -> {1,9} | =IFNA(#N/A,"x") -> "x" | =IFNA(1/0,2) -> #DIV/0!
      =IFERROR(1,NO.SUCH()) -> 1 | =CHOOSE(1,1,GAMMA(1)) -> 1 | =IFERROR(#N/A,) -> 0)");
}

TEST_F(BookFormulaTest, RefusesWhatItCannotMean) {
  for (const std::string text :
       {"=Sheet1:Sheet3!A1", "='Sheet1:Sheet3'!A1", "=SUM(Q1:Q4!A1)", "=[1]Sheet1!A1", "=[1]!Total",
        "='[2]My sheet'!A1", R"(='C:\[b.xlsx]S'!A1)", "=_xlfn.LET(_xlpm.x,1,_xlpm.x)", "=_xlfn.LAMBDA(_xlpm.x,1)(2)",
        "=_xlpm.x+1", "=T[", "=T[[#Rows],[a]]", "=T[[a]:b]", "=T[[a],[b]]", "=T[a][b]", "=SUM (A1)"})
    EXPECT_FALSE(ParseFormula(text, FormulaDialect::kBook)) << text;
  Define("empty", "=7");
  EXPECT_EQ(PrintLiteral(Evaluate(*ParseFormula("=empty+[0]!Empty", FormulaDialect::kBook), context)), "14");
}

TEST_F(BookFormulaTest, TakesOneValueWhereOneIsWanted) {
  CheckSingle(R"(
      =A1:A3 -> @[Book1]Sheet1!A2 | =A1:A3*2 -> 8 | =A1:C1*2 -> #VALUE! | =A1:C3+1 -> #VALUE! | =A5:A9&"" -> #VALUE!
      ={1,2;3,4} -> 1 | ={1,2}*2 -> 2 | =SUM({1,2}*2) -> 6 | =SUM(A1:A3) -> 12 | =SUM(A1:A3*2) -> 8
      =LEN(A1:A3) -> 1 | =SUM(LEN({"a","bc"})) -> 3 | =IF(A1:A3=4,"x","y") -> "x" | =SUM(IF(TRUE,A1:A3)) -> 12
      =IFERROR(A1:A3/0,B1:B3) -> @[Book1]Sheet1!B2 | =INDEX(A1:C3,A1,0) -> #VALUE! | =GET.REF(A1:A3) -> @[Book1]Sheet1!A2
      =GET.VALUE(A1:A3) -> 1 | =GET.VALUE(,1) -> missing | =MATCH(A1:A3,A1:A3,0) -> 2)");
  EvalAs(FormulaForm::kSingle, "=GET.VALUE(1,B1:B3)");
  EXPECT_EQ(PrintLiteral(addin.lastOperands[1]), "5");
  for (const FormulaForm form : {FormulaForm::kSpilling, FormulaForm::kArray})
    EXPECT_EQ(EvalAs(form, "=A1:A2*2"), "{2;8}");
}

TEST_F(BookFormulaTest, NamesGoAlongWithTheCell) {
  Define("total", "=SUM(Sheet1!$A$1:$A$3)");
  Define("rate", "=0.5");
  Define("left", "=Sheet1!XFC1");  // two cells to the left, round the edge
  Define("rate", "=0.25", sheet.Id());
  Define("me", "=me+Other");
  Define("other", "=ME*me");
  Check(
      R"(=Total*Rate -> 3 | =left -> @[Book1]Sheet1!C2 | =Sheet1!rate -> 0.25 | =me -> #NAME? | =Nowhere!rate -> #REF!
      =INDIRECT("Left") -> @[Book1]Sheet1!C2 | =INDIRECT("Sheet1!left") -> @[Book1]Sheet1!C2 | =INDIRECT("rate") -> #REF!)");
  EXPECT_EQ(EvalAs(FormulaForm::kSingle, "=left*2"), "12");
  EXPECT_EQ(ReadsOf(*ParseFormula("=left+total+me")), "C2 A1:A3");
  Follow("G1 -> =Total*2 | G2 -> =G1+1", "G2 -> 25");
  Follow("A1 -> 5", "G2 -> 33");
  for (int i = 0; i < 60; ++i) {
    const std::string next = "name_" + std::to_string(i + 1);
    Define("name_" + std::to_string(i), "=" + next + "+" + next);
  }
  EXPECT_EQ(Eval("=name_0"), "!its names stand for too much: more than 10000 names in names");
  EXPECT_EQ(ReadsOf(*ParseFormula("=name_0")), "");
}

TEST_F(BookFormulaTest, TablesByTheirColumns) {
  sheet.ItsBook().ItsTables().Add(
      Table(XTEXT("Sales"), {sheet.Id(), {0, 4, 0, 2}}, 1, 1, {XTEXT("Name"), XTEXT("It's [x]"), XTEXT("#")}));
  sheet.ItsBook().ItsTables().Add(Table(XTEXT("Bare"), {sheet.Id(), {0, 2, 0, 0}}, 0, 0, {XTEXT("a")}));
  Check(R"(
      =sales -> @[Book1]Sheet1!A2:C4 | =Sales[] -> @[Book1]Sheet1!A2:C4 | =Sales[Name] -> @[Book1]Sheet1!A2:A4
      =Sales[It''s '[x']] -> @[Book1]Sheet1!B2:B4 | =Sales['#] -> @[Book1]Sheet1!C2:C4 | =Sales[#All] -> @[Book1]Sheet1!A1:C5
      =Sales[[#All],[Name]] -> @[Book1]Sheet1!A1:A5 | =Sales[#Headers] -> @[Book1]Sheet1!A1:C1
      =Sales[[#Headers],[#Data],[name]] -> @[Book1]Sheet1!A1:A4 | =Sales[[#Totals],['#]] -> @[Book1]Sheet1!C5
      =Sales[[Name]:[It''s '[x']]] -> @[Book1]Sheet1!A2:B4 | =Sales[[#This Row],[Name]] -> @[Book1]Sheet1!A2
      =Sales[@] -> @[Book1]Sheet1!A2:C2 | =Sales[@Name] -> @[Book1]Sheet1!A2 | =Sales[@[Name]:['#]] -> @[Book1]Sheet1!A2:C2
      =Sales[None] -> #REF! | =None[Name] -> #REF! | =Bare[#Headers] -> #REF! | =Bare[#All] -> @[Book1]Sheet1!A1:A3
      =INDIRECT("sales") -> @[Book1]Sheet1!A2:C4 | =INDIRECT("Sales[@Name]") -> @[Book1]Sheet1!A2 | =INDIRECT("None[a]") -> #REF!)");
  EXPECT_EQ(ReadsOf(*ParseFormula("=Sales[@Name]+SUM(Bare)")), "A2 A1:A3");
  context.caller = {sheet.Id(), {Area::OfCell(4, 4)}};
  EXPECT_EQ(Eval("=Sales[@Name]"), "#VALUE!");
}

TEST_F(BookFormulaTest, MovesWhatIsNotFixed) {
  const Formula formula = *ParseFormula("=SUM(A1:B$2,$C3,D:D,$E:F,2:$3)&\"A1\"&'A1'!A1&LOG10(1)&T1[A1]");
  EXPECT_EQ(formula.Moved(2, 1).Text(), "=SUM(B$2:C3,$C5,E:E,$E:G,$3:4)&\"A1\"&'A1'!B3&LOG10(1)&T1[A1]");
  EXPECT_EQ(formula.Moved(2, 1).Moved(-2, -1).Text(), formula.Text());
  EXPECT_EQ(Eval("=A1:INDEX(A:A,2)"), "@[Book1]Sheet1!A1:A2");
  const auto valueAt = [&](std::int64_t rows, std::int64_t columns) {
    return PrintLiteral(Dereference(Evaluate(ParseFormula("=B2+$A1")->Moved(rows, columns), context), workbooks));
  };
  EXPECT_EQ(valueAt(0, 0) + valueAt(1, 1) + valueAt(-1, -1), "6131");
  EXPECT_EQ(ReadsOf(ParseFormula("=B2:INDEX(C:C,2)+Sheet1!B3:(A1)")->Moved(1, 0)), "B3 C:C A2:B4 B4 A2");
}

TEST_F(BookFormulaTest, PoolsEqualFormulas) {
  FormulaPool pool(FormulaDialect::kBook);
  const Formula first = *pool.Enter("=A1+$B$1+\"A1\"", 0, 2);
  const Formula second = *pool.Enter("=A2+$B$1+\"A1\"", 1, 2);
  EXPECT_EQ(&first.Root(), &second.Root());
  EXPECT_EQ(second.Text(), "=A2+$B$1+\"A1\"");
  for (const std::string text : {"=A2+$B$2+\"A1\"", "=A2+B$1+\"A1\"", "=A1+$B$1+\"A1\"", "=A2+$B$1+\"A2\""})
    EXPECT_NE(&pool.Enter(text, 1, 2)->Root(), &first.Root()) << text;
  EXPECT_FALSE(pool.Enter("=A1+", 0, 0));
}

TEST_F(BookFormulaTest, ProfilesCallsWithoutTheirOperands) {
  FunctionProfile profile;
  context.profile = &profile;
  Eval("=SUM(get.value(A1),Sum(1),GET.VALUE(2))");
  const auto entries = profile.Slowest(5);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].calls + entries[1].calls, 4);
  EXPECT_EQ(profile.Slowest(1).size(), 1u);
}

}  // namespace
}  // namespace qcalc
