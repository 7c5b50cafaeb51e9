// Excel's own functions that the host offers.
#include <gtest/gtest.h>

#include <string>

#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class BuiltinTest : public ModelTest {};

TEST_F(BuiltinTest, Sum) {
  Set("A1", "{1,\"5\",TRUE;empty,2,-0.5}");
  Set("D1", "{1,#REF!;#N/A,2}");
  Check(R"(
      =SUM("5",15,TRUE) -> 21 | =SUM(A1:C2) -> 2.5 | =SUM(A:C) -> 2.5 | =SUM((A1,B2),10) -> 13
      =SUM({1,"5",TRUE}) -> 1 | =SUM("x",1) -> #VALUE! | =SUM(D:E) -> #REF! | =SUM(#NUM!,D1:E2) -> #NUM!
      =SUM({#DIV/0!,#N/A}) -> #DIV/0! | =SUM(,3) -> 3 | =SUM(Z1:Z9) -> 0 | =SUM(1E308,1E308) -> #NUM!)");
}

TEST_F(BuiltinTest, Index) {
  Set("B2", "{1,2,3;4,5,6}");
  Check(R"(
      =INDEX(B2:D3,2,3) -> @[Book1]Sheet1!D3 | =INDEX(B2:D3,0,2) -> @[Book1]Sheet1!C2:C3
      =INDEX(B2:D3,2,) -> @[Book1]Sheet1!B3:D3 | =INDEX(B2:D3,1) -> #REF! | =INDEX(B2:D2,3) -> @[Book1]Sheet1!D2
      =INDEX(B2:B3,2) -> @[Book1]Sheet1!B3 | =INDEX(B:B,5) -> @[Book1]Sheet1!B5 | =INDEX({1,2;3,4},2) -> {3,4}
      =INDEX({1,2;3,4},2,1) -> 3 | =INDEX({1,2;3,4},,2) -> {2;4} | =INDEX({1,2,3},2) -> 2
      =INDEX({"a";"b"},2.9) -> "b" | =INDEX({1,2;3,4},0,0) -> {1,2;3,4} | =INDEX(7,1,1) -> 7
      =INDEX({1,2},3) -> #REF! | =INDEX({1,2},1,-1) -> #VALUE! | =INDEX({1,2},"x") -> #VALUE!
      =INDEX(#N/A,1) -> #N/A | =INDEX((B2:C3,D2:D3),2,1,2) -> @[Book1]Sheet1!D3 | =INDEX((B2,D2),1,1,3) -> #REF!
      =INDEX(B2:D3,{2;1},{1,3}) -> {4,6;1,3} | =SUM(INDEX(B2:D3,2,0)) -> 15)");
}

TEST_F(BuiltinTest, If) {
  Set("A1", "{1,0}");
  Check(R"(
      =IF(A1,B1,2) -> @[Book1]Sheet1!B1 | =IF(B1,1) -> FALSE | =IF(TRUE,,2) -> 0 | =IF("true",1,2) -> 1
      =IF("x",1,2) -> #VALUE! | =IF(#N/A,1,2) -> #N/A | =IF(empty,1,2) -> 2
      =IF({TRUE,FALSE;#REF!,0},"y",{1,2}) -> {"y",2;#REF!,2} | =IF(FALSE,GET.NEXT(),5) -> 5
      =IF(TRUE) -> !IF at column 2 takes 2 to 3 arguments, found 1)");
  EXPECT_EQ(addin.calls, 0);
}

TEST_F(BuiltinTest, SizesSequencesTexts) {
  Set("A1", "{\"ab\",7}");
  Check(R"(
      =ROWS(A1:C7) -> 7 | =COLUMNS(A1:C7) -> 3 | =ROWS(A:A) -> 1048576 | =COLUMNS(1:1) -> 16384 | =ROWS(5) -> 1
      =ROWS({1,2;3,4;5,6}) -> 3 | =COLUMNS(NA()) -> #N/A | =ROWS((A1,B1)) -> #REF!
      =SEQUENCE(2,3) -> {1,2,3;4,5,6} | =SEQUENCE(3,,10,-2.5) -> {10;7.5;5} | =SEQUENCE(1) -> {1}
      =SEQUENCE(,2) -> {1,2} | =SEQUENCE(0) -> #CALC! | =SEQUENCE(-1) -> #VALUE! | =SEQUENCE(2,0) -> #CALC!
      =SEQUENCE(1048577) -> #VALUE! | =ROWS(SEQUENCE(1048576)) -> 1048576
      =CHAR(0) -> #VALUE! | =CHAR(256) -> #VALUE! | =CHAR({65,66.9}) -> {"A","B"}
      =LEN(UNICHAR(128512)) -> 2 | =UNICHAR(0) -> #VALUE! | =UNICHAR(55296) -> #N/A
      =UNICHAR(1114112) -> #VALUE! | =REPT("ab",2.9) -> "abab" | =REPT("ab",0) -> "" | =REPT("ab",-1) -> #VALUE!
      =LEN(REPT("a",32767)) -> 32767 | =REPT("ab",16384) -> #VALUE! | =REPT("",2000000000) -> ""
      =REPT("a",32767)&"b" -> #VALUE! | =LEN(0.1+0.2) -> 3 | =LEN(TRUE) -> 4 | =LEN(Z9) -> 0 | =LEN(#N/A) -> #N/A
      =LEN(A1:B1) -> {2,1} | =T(A1:B1) -> "ab" | =T(B1) -> "" | =T(#NUM!) -> #NUM! | =T(TRUE) -> "")");
  EXPECT_EQ(Eval("=UNICHAR(128512)&CHAR(128)&CHAR(10)"), "\"\U0001F600\u20AC\"U+000A");
}

TEST_F(BuiltinTest, Counta) {
  Set("A1", "{1,\"\",TRUE;empty,#N/A,\"x\"}");
  Check(R"(
      =COUNTA(A1:C2) -> 5 | =COUNTA(A:C,(A1,A2)) -> 6 | =COUNTA({1,"",empty;#N/A,FALSE,empty}) -> 4 | =COUNTA(Z1) -> 0
      =COUNTA(1,"",#REF!,TRUE,) -> 5 | =COUNTA(empty) -> 0)");
}

TEST_F(BuiltinTest, Value) {
  Check(R"(
      =VALUE("$1,000") -> 1000 | =VALUE(5) -> 5 | =VALUE(Z9) -> 0 | =VALUE(TRUE) -> #VALUE! | =VALUE("TRUE") -> #VALUE!
      =VALUE(#N/A) -> #N/A | =VALUE({"1/2/2020","x"}) -> {43832,#VALUE!})");
}

// Numbers as recorded from Excel, and the rules around them.
TEST_F(BuiltinTest, TextOfNumbers) {
  Check(R"cases(
      =TEXT(314159,"#,##0.00") -> "314,159.00" | =TEXT(1234567,"#,###") -> "1,234,567" | =TEXT(0,"#,###") -> ""
      =TEXT(1234567,"#,##.#") -> "1,234,567." | =TEXT(0.0123,"0.00%") -> "1.23%" | =TEXT(12.344,"0.00") -> "12.34"
      =TEXT(-12.3,"$###.00") -> "-$12.30" | =TEXT(12.3,"000.00") -> "012.30" | =TEXT(12.3,"#.##") -> "12.3"
      =TEXT(12345678,"0.0E+0") -> "1.2E+7" | =TEXT(12345678,"#,##0,") -> "12,346"
      =TEXT(0.00035,"#,##0.00%") -> "0.04%"
      =TEXT(1.005,"0.00") -> "1.01" | =TEXT(2.5,"0") -> "3" | =TEXT(-2.5,"0") -> "-3" | =TEXT(9.995,"0.00") -> "10.00"
      =TEXT(0.5,"#.0#") -> ".5" | =TEXT(1234.5,".00") -> "1234.50" | =TEXT(5,"?,???.?0?") -> "    5.00 "
      =TEXT(1234567890,"000-00-0000") -> "1234-56-7890" | =TEXT(5,"0000,000") -> "0,000,005" | =TEXT(12,"0#") -> "12"
      =TEXT(5,"0#") -> "05" | =TEXT(1.5E10,"0.0,,""M""") -> "15000.0M" | =TEXT(1E20,"0") -> "100000000000000000000"
      =TEXT(5,"0\%\x_)*-") -> "5%x " | =TEXT(5,"(0) ""a;b""") -> "(5) a;b" | =TEXT(0.25,"0%%") -> "2500%%"
      =TEXT(12345678,"##0.0E+0") -> "12.3E+6" | =TEXT(999960,"##0.0E+0") -> "1.0E+6"
      =TEXT(0.00012,"0.0e-00") -> "1.2e-04"
      =TEXT(0,"0.00E+00") -> "0.00E+00" | =TEXT(1200,".00E+0") -> ".12E+4" | =TEXT(5,"[Red]0[$€-407]") -> "5€"
      =TEXT(5,"[$-409]0;[Color 3]-0") -> "5" | =TEXT(-0.001,"0.00") -> "-0.00")cases");
}

TEST_F(BuiltinTest, TextChoosesSections) {
  Check(R"cases(
      =TEXT(1,"[<10]#"" Wow""") -> "1 Wow" | =TEXT(10,"[<10]#"" Wow""") -> "10" | =TEXT(-5,"0;(0)") -> "(5)"
      =TEXT(0,"0;(0);""none""") -> "none" | =TEXT(0,"0.0;(0)") -> "0.0" | =TEXT(-5,"0;") -> "" | =TEXT(5,";;;") -> ""
      =TEXT("x","0;0;0;<@>@") -> "<x>x" | =TEXT("x","0;;""t: ""@") -> "t: x" | =TEXT("x","0.00") -> "x"
      =TEXT("x",";;;") -> "" | =TEXT(TRUE,"@") -> "TRUE" | =TEXT(TRUE,"0") -> "TRUE" | =TEXT("12","0.00") -> "12.00"
      =TEXT(-5,"0;@") -> "-5" | =TEXT(5,"@") -> "5" | =TEXT(-5,"[<0]0.0;0") -> "5.0" | =TEXT(-5,"[<10]0.0;0") -> "-5.0"
      =TEXT(50,"[<10]0;[>=100]0.0;""mid""") -> "mid" | =TEXT(100,"[<10]0;[>=100]0.0;""mid""") -> "100.0"
      =TEXT(-5,"[>100]0;0.0") -> "-5.0" | =TEXT(Z9,"0.0") -> "0.0" | =TEXT(#N/A,"0") -> #N/A | =TEXT(5,"") -> ""
      =TEXT(1.2345678912,"General") -> "1.234567891" | =TEXT(1E10,"general") -> "10000000000"
      =TEXT(1E11,"General") -> "1E+11" | =TEXT(112345900000,"General") -> "1.12346E+11"
      =TEXT(1E-9,"General") -> "0.000000001"
      =TEXT(1E-10,"General") -> "1E-10" | =TEXT(0.00001234567,"General") -> "1.23457E-05"
      =TEXT(99999999999.9,"General") -> "1E+11"
      =TEXT(0.0001234567,"General") -> "0.000123457" | =TEXT(-1.5,"General"" m"";-General") -> "-1.5")cases");
}

TEST_F(BuiltinTest, TextOfDatesAndFractions) {
  Check(R"cases(
      =TEXT(19278.6079514,"ddd-mmm-yyy") -> "Sat-Oct-1952" | =TEXT(19278.6079514,"hh:mm:ss am/pm") -> "02:35:27 PM"
      =TEXT(3.14159,"[h]:m:s") -> "75:23:53" | =TEXT(3.14159,"[mm]:ss.00") -> "4523:53.38"
      =TEXT(1.5,"[ss]") -> "129600"
      =TEXT(37338.75,"dddd, mmmm d, yyyy h:mm A/P") -> "Saturday, March 23, 2002 6:00 P"
      =TEXT(0.5,"h AM/PM") -> "12 PM"
      =TEXT(37338,"m/d/yy mmmmm") -> "3/23/02 M" | =TEXT(0,"yyyy-mm-dd ddd") -> "1900-01-00 Sat"
      =TEXT(60,"d mmm") -> "29 Feb"
      =TEXT(61,"d mmm ddd") -> "1 Mar Thu" | =TEXT(2958465,"yyyy-mm-dd") -> "9999-12-31"
      =TEXT(2958466,"yyyy") -> #VALUE!
      =TEXT(-1,"yyyy") -> #VALUE! | =TEXT(1.999999,"d h:mm:ss") -> "2 0:00:00" | =TEXT(1.999999,"d") -> "1"
      =TEXT("July 2021","mm.yyyy") -> "07.2021" | =TEXT(0.52,"mm:ss") -> "28:48" | =TEXT(0.5,"s.000""s""") -> "0.000s"
      =TEXT(5.25,"# ?/?") -> "5 1/4" | =TEXT(0.5,"# ?/?") -> " 1/2" | =TEXT(5,"# ?/?") -> "5    "
      =TEXT(0,"# ?/?") -> "0    "
      =TEXT(1.5,"?/?") -> "3/2" | =TEXT(0,"?/?") -> "0/1" | =TEXT(2E19,"?/?") -> "20000000000000000000/1"
      =TEXT(0.3,"# ?/?") -> " 2/7" | =TEXT(0.5,"# ??/??") -> "  1/2 " | =TEXT(2.99,"# ?/?") -> "3    "
      =TEXT(-1.75,"# ?/8") -> "-1 6/8" | =TEXT(0.3333333333,"# ?/10") -> " 3/10"
      =TEXT(3.14159265358979,"?/???") -> "355/113"
      =TEXT(5,"0.0 0/0") -> #VALUE! | =TEXT(5,"[abc]0") -> #VALUE! | =TEXT(5,"0;0;0;@;0") -> #VALUE!
      =TEXT(5,"0\") -> #VALUE!
      =TEXT(5,"0E0") -> #VALUE! | =TEXT(5,"yyyy0") -> #VALUE! | =TEXT(5,"[h") -> #VALUE!
      =TEXT(5,"ss.0000") -> #VALUE! | =TEXT(5,"0g") -> #VALUE!
      =LEN(TEXT(REPT("x",20000),"@@")) -> #VALUE!)cases");
}

TEST_F(BuiltinTest, TextHasTheLocalMarks) {
  context.marks = {XTEXT(',')};
  Check(R"(
      =TEXT(1234.5,"#.##0,00") -> "1.234,50" | =TEXT("1,5","0,0") -> "1,5" | =TEXT(1.5,"General") -> "1,5"
      =TEXT(37338,"dd.mm.yyyy") -> "23.03.2002" | =TEXT(1.23,"[>1,5]0;0,0") -> "1,2")");
}

TEST_F(BuiltinTest, AreCalledByName) {
  Check("=irr(1,2) -> !irr at column 2 is a function of Excel that this host does not offer");
  const Value operands[] = {Value::Number(2), Value::Text(XTEXT("3"))};
  EXPECT_EQ(PrintLiteral(*CallBuiltin(XTEXT("Sum"), operands, context)), "5");
  for (const XStringView name : {XTEXT("COUNTB"), XTEXT("NA")}) EXPECT_FALSE(CallBuiltin(name, operands, context));
}

}  // namespace
}  // namespace qcalc
