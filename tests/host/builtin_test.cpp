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
  EXPECT_EQ(Eval("=UNICHAR(128512)&CHAR(128)&CHAR(10)"), "\"\U0001F600\u20AC\n\"");
}

TEST_F(BuiltinTest, RefusesWhatIsNotOffered) {
  Check(R"(
      =value(1,2) -> !value at column 2 is not offered yet | =COUNTA(1,2) -> !COUNTA at column 2 is not offered yet
      =TEXT(1,2) -> !TEXT at column 2 is not offered yet)");
  const Value operands[] = {Value::Number(2), Value::Text(XTEXT("3"))};
  EXPECT_EQ(PrintLiteral(*CallBuiltin(XTEXT("Sum"), operands, context)), "5");
  for (const XStringView name : {XTEXT("COUNTA"), XTEXT("NA")}) EXPECT_FALSE(CallBuiltin(name, operands, context));
}

}  // namespace
}  // namespace qcalc
