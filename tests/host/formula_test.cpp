// The parser of formulas and the evaluation of operators and operands.
#include "host/formulas/formula.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class FormulaTest : public ModelTest {};

TEST_F(FormulaTest, OperatorsCalculateAsInExcel) {
  Set("A1", "{1,2;3,4}");
  Check(R"(
      =-3^2 -> 9 | =0-3^2 -> -9 | =2^3^2 -> 64 | =2^-1 -> 0.5 | =1+2*3 -> 7 | =(1+2)*3 -> 9 | =8/4/2 -> 1
      =7-2-1 -> 4 | =50% -> 0.5 | =-50% -> -0.5 | =200%% -> 0.02 | =2^50% -> 1.4142135623730951 | =1+1&2*3 -> "26"
      ="a"&1="A1" -> TRUE | =1=1=TRUE -> TRUE | =--"5" -> 5 | =+"x" -> "x" | = 1 + 1  -> 2 | 3*4 -> 12
      =1<>2 -> TRUE | =2>=2 -> TRUE | =1e3 -> 1000 | =.5 -> 0.5 | =TRUE+TRUE -> 2 | ="$1,000"*2 -> 2000
      =empty&"x" -> "x" | =empty=0 -> TRUE | =empty="" -> TRUE | =empty=FALSE -> TRUE
      =10^-3 -> 0.001 | =1.1^100 -> 13780.61233982238 | =2^0.1 -> 1.0717734625362931
      =7^-2.5 -> 0.007713560673657699 | =1.0000001^12345678 -> 3.436892564924893
      =(-8)^(1/3) -> -2 | =(-2)^3 -> -8 | =(-2)^-2 -> 0.25 | =10^309 -> #NUM! | =10^-310 -> 0 | =0^2 -> 0
      =1/0 -> #DIV/0! | =0^0 -> #NUM! | =0^-1 -> #DIV/0! | =(-8)^0.5 -> #NUM! | =1e308*10 -> #NUM!
      =#N/A+#REF! -> #N/A | ="x"+#REF! -> #REF! | =#NUM!&"a" -> #NUM! | =(#N/A=1) -> #N/A | ="TRUE"+0 -> #VALUE!
      ="1">2 -> TRUE | =1=TRUE -> FALSE | ="a"<TRUE -> TRUE | =FALSE<TRUE -> TRUE | ="a"="A" -> TRUE
      =""+1 -> #VALUE! | =1=1+1e-16 -> TRUE | =1+14*.01=1.14 -> TRUE | =1.00000000000001=1 -> FALSE
      ={1,2;3,4}*10 -> {10,20;30,40} | ={1,2}+{10;20} -> {11,12;21,22} | ={1,2,3}+{1,2} -> {2,4,#N/A}
      ={1,2;3,4}+{1,2,3} -> {2,4,#N/A;4,6,#N/A} | ={5}&"" -> {"5"} | =-{1,"x",empty} -> {-1,#VALUE!,0}
      =A1:B2*2 -> {2,4;6,8} | =C1+1 -> 1
      =A:XFD+1 -> !an array of 1048576 x 16384 cells is too large: at most 67108864 cells
      =A:A+1:1 -> !an array of 1048576 x 16384 cells is too large: at most 67108864 cells
      =SEQUENCE(1048576,16384) -> !an array of 1048576 x 16384 cells is too large: at most 67108864 cells)");
}

TEST_F(FormulaTest, ReadsReferences) {
  workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("My sheet"));
  workbooks.BookNamed(XTEXT("Other.xlsx")).SheetNamed(XTEXT("It's"));
  Check(R"(
      =A1 -> @[Book1]Sheet1!A1 | =$B$2:C9 -> @[Book1]Sheet1!B2:C9 | =c9:b2 -> @[Book1]Sheet1!B2:C9
      =A:A -> @[Book1]Sheet1!A:A | =$C:$B -> @[Book1]Sheet1!B:C | =3:5 -> @[Book1]Sheet1!3:5
      =XFD1048576 -> @[Book1]Sheet1!XFD1048576 | ='My sheet'!A1:B2 -> @[Book1]My sheet!A1:B2
      =sheet1!B3 -> @[Book1]Sheet1!B3 | ='[Other.xlsx]It''s'!A1 -> @[Other.xlsx]It's!A1
      =[Book1]Sheet1!A1 -> @[Book1]Sheet1!A1 | =!B7 -> @[Book1]Sheet1!B7
      =(A1:A3,C1:C3) -> @([Book1]Sheet1!A1:A3,[Book1]Sheet1!C1:C3) | =(A1,'My sheet'!A1) -> #VALUE!
      =(A1) -> @[Book1]Sheet1!A1 | =INDEX(A1:A9,2):C4 -> @[Book1]Sheet1!A2:C4 | =Nowhere!A1 -> #REF!
      =XFE1 -> #NAME? | =A1048577 -> #NAME? | =A0 -> #NAME? | =unknown -> #NAME? | =NO.SUCH.FUNCTION(1) -> #NAME?)");
}

TEST_F(FormulaTest, HandsOperandsOverAsRegistered) {
  Set("A1", "{1,2;3,4}");
  names[XTEXT("data")] = *ParseLiteral("{7,8}");
  EXPECT_EQ(Eval("=GET.VALUE((A1,B1))"), "#VALUE!");
  EXPECT_EQ(addin.calls, 0);
  Check(R"(
      =get.ref(A1:B2) -> @[Book1]Sheet1!A1:B2 | =GET.VALUE(A1:B2) -> {1,2;3,4} | =GET.VALUE(A2) -> 3
      =GET.VALUE(C7) -> empty | =GET.VALUE(,1) -> missing | =GET.REF({1}) -> {1}
      =GET.REF((A1,B1)) -> @([Book1]Sheet1!A1,[Book1]Sheet1!B1)
      =1+GET.REF(1,2,3) -> !GET.REF at column 4 takes at most 2 arguments, found 3)");
  EXPECT_TRUE(addin.lastOperands[1].IsMissing());
  EXPECT_EQ(Eval("=GET.REF(Data,A1)"), "{7,8}");
  EXPECT_TRUE(addin.lastOperands[1].IsReference());
}

TEST_F(FormulaTest, StopsAtTheOutermostAddinCall) {
  Set("A1", "{1;2}");
  const auto call = PrepareOutermostCall(*ParseFormula("=SUM(GET.VALUE(GET.REF(A1:A2)))"), context);
  ASSERT_TRUE(call);
  EXPECT_EQ(ToUtf8(call->function->name), "GET.VALUE");
  EXPECT_EQ(PrintLiteral(call->operands[0]), "{1;2}");
  EXPECT_EQ(addin.calls, 1);
  EXPECT_FALSE(PrepareOutermostCall(*ParseFormula("=SUM(A1:A2)"), context));
  EXPECT_TRUE(PrepareOutermostCall(*ParseFormula("=GET.VALUE((A1,A2))"), context)->refused);
}

TEST_F(FormulaTest, SaysWhereAndWhatWasExpected) {
  Check(R"(
      =SUM(1,2 -> !line 1, column 9: expected ',' or ')' after an argument of SUM, found the end
      =1+ -> !line 1, column 4: expected a value, a reference, a function or '(', found the end
      =1 2 -> !line 1, column 4: expected an operator or the end of the formula, found '2'
      ='My sheet'A1 -> !line 1, column 12: expected '!' after the name of a sheet, found 'A1'
      =Data!7x -> !line 1, column 7: expected a reference after '!', found '7x'
      =$Foo -> !line 1, column 2: expected a reference, found '$Foo'
      =(1,2 -> !line 1, column 6: expected ')' or an operator, found the end)");
  EXPECT_EQ(Eval("=SUM(1,\n {1;2,3})"),
            "!line 2, column 8: expected 1 elements in row 2 of the array, as in its first row, found 2");
}

TEST_F(FormulaTest, BoundsNestingButNotLength) {
  const auto repeated = [](int times, const std::string& text) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
  };
  EXPECT_EQ(Eval("=" + repeated(150, "SUM(") + "1" + repeated(150, ")")), "1");
  for (const auto& [open, close] :
       {std::pair("(", ")"), {"-", ""}, {"SUM(", ")"}, {"1+(", ")"}, {"", "%"}, {"A1:A1:(", ")"}})
    EXPECT_EQ(Eval("=" + repeated(100'000, open) + "1" + repeated(100'000, close))[0], '!') << open;
  const std::string chain = "=0" + repeated(9'000, "+1");
  EXPECT_EQ(Eval(chain), "9000");
  EXPECT_EQ(ReferencesIn(*ParseFormula(chain + "+A1")).size(), 1u);
}

TEST_F(FormulaTest, ReadsReferencesOfCommands) {
  EXPECT_EQ(*ParseRows("3:5"), (Area{2, 4, 0, kXlMaxColumns - 1}));
  EXPECT_EQ(*ParseRows("7"), (Area{6, 6, 0, kXlMaxColumns - 1}));
  for (const std::string text : {"A1", "0", "5:", "1048577", "A:B", ""}) EXPECT_FALSE(ParseRows(text)) << text;
  for (const std::string text : {"A1 B1", "A", "(A1", "A1:5", "Data!", "#REF!", ""})
    EXPECT_FALSE(ParseReferences(text)) << text;
}

}  // namespace
}  // namespace qcalc
