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

TEST_F(BuiltinTest, Aggregates) {
  Set("A1", "{1,\"\",TRUE;empty,#N/A,\"x\"}");
  Set("D1", "{4,\"7\";-2,TRUE;empty,\"\";10,3;4,empty}");
  Check(R"(
      =COUNTA(A1:C2) -> 5 | =COUNTA(A:C,(A1,A2)) -> 6 | =COUNTA({1,"",empty;#N/A,FALSE,empty}) -> 4 | =COUNTA(Z1) -> 0
      =COUNTA(1,"",#REF!,TRUE,) -> 5 | =COUNTA(empty) -> 0 | =COUNT(A:E,"5","x",TRUE,,#N/A) -> 9
      =COUNTBLANK(D1:E5) -> 3 | =COUNTBLANK(A:A) -> 1048575 | =COUNTBLANK({1}) -> #VALUE! | =AVERAGE(D1:E5) -> 3.8
      =AVERAGE("3",D1,TRUE,) -> 2 | =AVERAGE(E2) -> #DIV/0! | =AVERAGE(A1:C2) -> #N/A | =MIN(D1:E5) -> -2
      =MAX(E1:E2) -> 0 | =MAX(-3,"-1") -> -1 | =PRODUCT(D1:E5) -> -960 | =PRODUCT(E2) -> 0 | =SUMSQ({1,"9",3}) -> 10
      =MEDIAN(D:E) -> 4 | =MEDIAN(4,1,3,2) -> 2.5 | =MEDIAN(E2) -> #NUM! | =LARGE(D1:E5,{1,2;5,6}) -> {10,4;-2,#NUM!}
      =SMALL(D1:E5,2.9) -> 3 | =SMALL(D1,0) -> #NUM! | =STDEV({1,2,3,4,6.5}) -> 2.1095023109728985
      =STDEV.P(2,4,4,4,5,5,7,9) -> 2 | =VAR(1E9,1000000002,1000000004) -> 4 | =VAR.P({1,3}) -> 1 | =VAR(5) -> #DIV/0!
      =VARP(5) -> 0 | =SUMPRODUCT({1,2;3,4},{1,"2";TRUE,1}) -> 5 | =SUMPRODUCT(D:D,D:D) -> 136
      =SUMPRODUCT({1,2},{1;2}) -> #VALUE! | =SUMPRODUCT((D1:D5>0)*D1:D5) -> 18 | =SUMPRODUCT(A1:C2) -> #N/A
      =SUMPRODUCT(3,"4") -> 0)");
}

TEST_F(BuiltinTest, SubtotalsPassOverEachOtherAndHiddenRows) {
  Follow("A1 -> {1;2;\"x\";4} | A5 -> =SUBTOTAL(9,A1:A4) | A6 -> =1+subtotal(9,A1) | A7 -> 10 | B1 -> #NUM!",
         "A5 -> 7");
  sheet.HideRows(1, 1, true);
  Check(R"(
      =SUBTOTAL(9,A:A) -> 17 | =SUBTOTAL(109,A1:A7,A1) -> 16 | =SUBTOTAL(1,A1:A4) -> 2.3333333333333335
      =SUBTOTAL(102,A1:B7) -> 3 | =SUBTOTAL(3,A1:B7) -> 6 | =SUBTOTAL({4,105,6},A1:A7) -> {10,1,80}
      =SUBTOTAL(7,A1:A2) -> 0.7071067811865476 | =SUBTOTAL(8,A1:A2) -> 0.5 | =SUBTOTAL(10,A1:A2) -> 0.5
      =SUBTOTAL(111,A1:A4) -> 2.25 | =SUBTOTAL(9,A1:B1) -> #NUM! | =SUBTOTAL(9,{1}) -> #VALUE!
      =SUBTOTAL(12,A1) -> #VALUE! | =SUBTOTAL(209,A1) -> #VALUE! | =SUBTOTAL(2,5) -> #VALUE!)");
  sheet.AddFilter(AreaOf("A1:A4"));
  Check("=SUBTOTAL(9,A:A) -> 15");
}

TEST_F(BuiltinTest, Conditions) {
  Set("A1", "{5,\"apple\";\"5\",\"APPLE pie\";empty,\"b*\";0,\"\";-2.5,TRUE;#N/A,\"bb\";43831,empty}");
  Set("D1", "{1;2;4;8;16;32;\"x\"}");
  Check(R"(
      =COUNTIF(A1:A7,5) -> 2 | =COUNTIF(A1:A7,"=5") -> 2 | =COUNTIF(A1:A7,"<>5") -> 5 | =COUNTIF(A1:A7,"<5") -> 2
      =COUNTIF(A1:A7,">=1/1/2020") -> 1 | =COUNTIF(A1:A7,Z1) -> 1 | =COUNTIF(A1:A7,#N/A) -> 1
      =COUNTIF(A1:A7,"#N/A") -> 1 | =COUNTIF(B1:B7,"a*") -> 2 | =COUNTIF(B1:B7,"Apple") -> 1
      =COUNTIF(B1:B7,"b~*") -> 1 | =COUNTIF(B1:B7,"<>b?") -> 5 | =COUNTIF(B1:B7,">b") -> 2 | =COUNTIF(B1:B7,"") -> 2
      =COUNTIF(B1:B7,"=") -> 1 | =COUNTIF(B1:B7,"<>") -> 6 | =COUNTIF(B1:B7,"TRUE") -> 1 | =COUNTIF(B1:B7,"*") -> 5
      =COUNTIF(A:A,"") -> 1048570 | =COUNTIF(A1:B7,{5,"bb"}) -> {2,1} | =COUNTIF({1,2},1) -> #VALUE!
      =COUNTIF(A1,REPT("x",256)) -> #VALUE! | =COUNTIF(#REF!,1) -> #REF! | =COUNTIFS(A1:A7,"<>5",B1:B7,"<>b*") -> 3
      =COUNTIFS(A:A,"<>5",B:B,"") -> 1048571 | =COUNTIFS(A1:A7,">-9",B1:B7,"") -> 2
      =COUNTIFS(A1:A7,1,B1:B6,1) -> #VALUE! | =SUMIF(B1:B7,"a*",D1) -> 3 | =SUMIF(D1:D7,">2") -> 60
      =SUMIF(B1:B7,"bb",A1:A7) -> #N/A | =SUMIF(A1:A7,"<>5",D1:D7) -> 60 | =SUMIFS(D1:D7,A1:A7,"<>5",B1:B7,"<>b*") -> 24
      =SUMIFS(D1:D6,A1:A7,5) -> #VALUE! | =AVERAGEIF(A1:A7,5,D1:D7) -> 1.5 | =AVERAGEIF(A1:A7,77) -> #DIV/0!
      =AVERAGEIFS(D1:D7,D1:D7,">1",D1:D7,"<8") -> 3 | =MAXIFS(D1:D7,A1:A7,"<=5") -> 16
      =MINIFS(D1:D7,A1:A7,">5") -> 0)");
}

// Searches of long columns build an index, which is to find what a scan finds.
TEST_F(BuiltinTest, ConditionsOnAnIndex) {
  for (int row = 1; row <= 1000; ++row)
    Set("A" + std::to_string(row), row % 10 == 0 ? "\"7\"" : row % 10 == 1 ? "\"Seven\"" : std::to_string(row % 10));
  for (int turn = 0; turn < 12; ++turn) {
    EXPECT_EQ(Eval("=COUNTIF(A3:A1000,7)"), "200");
    EXPECT_EQ(Eval("=COUNTIF(A2:A990,\"sEvEn\")"), "98");
    EXPECT_EQ(Eval("=COUNTIFS(A1:A999,\"seven\",A2:A1000,2)"), "100");
  }
  EXPECT_TRUE(sheet.Indexes().Find(sheet.Cells(), 0));
}

TEST_F(BuiltinTest, Arithmetic) {
  Check(R"(
      =ROUND(1.005,2) -> 1.01 | =ROUND(-2.5,0) -> -3 | =ROUND(0.1+0.2,15) -> 0.3 | =ROUND(1234.5,-2) -> 1200
      =ROUND(5,-1) -> 10 | =ROUND(4,-1) -> 0 | =ROUND(9.995,2.9) -> 10 | =ROUND(1E15,-99) -> 0
      =ROUNDUP(1.1*3,1) -> 3.3 | =ROUNDUP(-0.001,0) -> -1 | =ROUNDUP(3,-2) -> 100 | =ROUNDUP(1E15,-3) -> 1e+15
      =ROUNDDOWN(-19.99,-1) -> -10 | =TRUNC(-8.99) -> -8 | =TRUNC(8.999,2) -> 8.99 | =INT(-0.5) -> -1 | =INT("7.9") -> 7
      =ABS({-1,"x"}) -> {1,#VALUE!} | =SIGN(-3) -> -1 | =MOD(-3,2) -> 1 | =MOD(3,-2) -> -1 | =MOD(5.5,2) -> 1.5
      =MOD(1,0) -> #DIV/0! | =MOD(1E13,2) -> #NUM! | =QUOTIENT(-7,2) -> -3 | =POWER(-8,1/3) -> -2 | =SQRT(-1) -> #NUM!
      =EXP(710) -> #NUM! | =LN(0) -> #NUM! | =LOG(1000) -> 3 | =LOG(125,5) -> 3 | =LOG(8,1) -> #DIV/0!
      =LOG10(0.001) -> -3 | =CEILING(0.3,0.1) -> 0.3 | =CEILING(-2.5,-2) -> -4 | =CEILING(-2.5,2) -> -2
      =CEILING(2.5,-2) -> #NUM! | =FLOOR(-2.5,2) -> -4 | =FLOOR(2.5,0) -> #DIV/0! | =MROUND(-7,-2) -> -8
      =MROUND(1,-2) -> #NUM! | =EVEN(-1) -> -2 | =EVEN(2) -> 2 | =ODD(0) -> 1 | =ODD(-2) -> -3 | =ODD(3.1) -> 5
      =ATAN2(1,0) -> 0 | =ATAN2(0,0) -> #DIV/0! | =ASIN(2) -> #NUM! | =DEGREES(PI()) -> 180 | =RADIANS(180)=PI() -> TRUE
      =AND(RAND()>=0,RAND()<1) -> TRUE | =RANDBETWEEN(2.5,3.9) -> 3 | =RANDBETWEEN(3,2) -> #NUM!)");
}

TEST_F(BuiltinTest, LogicAndInformation) {
  Follow("A1 -> {1,\"TRUE\",FALSE;empty,#N/A,#DIV/0!} | A3 -> =1+1", "A3 -> 2");
  Check(R"(
      =AND(A1:B1) -> TRUE | =AND(A1:C1) -> FALSE | =AND("true",1) -> TRUE | =AND("x") -> #VALUE! | =AND(B1) -> #VALUE!
      =AND(A1:C2) -> #N/A | =AND(TRUE,) -> FALSE | =OR(C1,B1) -> FALSE | =OR({0,"a"},1) -> TRUE | =OR(#NUM!,1) -> #NUM!
      =XOR(1,1,A1) -> TRUE | =XOR(TRUE(),A1:C1) -> FALSE | =NOT({0,"FALSE","x"}) -> {TRUE,TRUE,#VALUE!}
      =FALSE() -> FALSE | =ISBLANK(A2) -> TRUE | =ISBLANK("") -> FALSE
      =ISERROR(A1:C2) -> {FALSE,FALSE,FALSE;FALSE,TRUE,TRUE} | =ISERR(B2:C2) -> {FALSE,TRUE}
      =ISNA(B2:C2) -> {TRUE,FALSE} | =ISNUMBER(A1:C1) -> {TRUE,FALSE,FALSE} | =ISTEXT(B1) -> TRUE
      =ISLOGICAL(C1) -> TRUE | =ISNONTEXT(A2) -> TRUE | =ISREF(A1) -> TRUE | =ISREF(1) -> FALSE
      =ISFORMULA(A2:A3) -> {FALSE;TRUE} | =ISFORMULA(1) -> #VALUE! | =N(A1:C2) -> 1 | =N(TRUE) -> 1 | =N("7") -> 0
      =N(B2) -> #N/A | =TYPE(A1:B1) -> 64 | =TYPE(A2) -> 1 | =TYPE(B1) -> 2 | =TYPE(C1) -> 4 | =TYPE(C2) -> 16
      =TYPE({1}) -> 64
      =ERROR.TYPE({#NULL!,#DIV/0!,#VALUE!,#REF!,#NAME?,#NUM!,#N/A,#SPILL!,#CALC!,1}) -> {1,2,3,4,5,6,7,9,14,#N/A})");
}

TEST_F(BuiltinTest, Texts) {
  Set("A1", "{\"a\",1,\"\";empty,TRUE,\"b\"}");
  Check(R"cases(
      =LEFT("abc") -> "a" | =LEFT("abc",9) -> "abc" | =LEFT(12.5,2.9) -> "12" | =LEFT("abc",-1) -> #VALUE!
      =RIGHT("abc",2) -> "bc" | =RIGHT("abc",0) -> "" | =MID("abc",2,9) -> "bc" | =MID("abc",4,1) -> ""
      =MID("abc",0,1) -> #VALUE! | =MID("abc",1,-1) -> #VALUE! | =FIND("c","abcabc",4) -> 6
      =FIND("C","abc") -> #VALUE! | =FIND("","abc",4) -> 4 | =FIND("","abc",5) -> #VALUE! | =FIND("?","a?") -> 2
      =SEARCH("C?","abcx") -> 3 | =SEARCH("b*d","abcbxd",3) -> 4 | =SEARCH("~*","ab*") -> 3
      =SEARCH("b*c","acb") -> #VALUE! | =SEARCH("*","") -> 1 | =SEARCH("ab~",REPT("a",9)&"b") -> 9
      =SEARCH("a*c",REPT("a",32767)) -> #VALUE! | =REPLACE("abcd",2,2,"-") -> "a-d" | =REPLACE("ab",9,1,"c") -> "abc"
      =REPLACE("ab",0,1,"") -> #VALUE! | =SUBSTITUTE("aXbX","X","YX") -> "aYXbYX"
      =SUBSTITUTE("aaaa","aa","b",2) -> "aab" | =SUBSTITUTE("aaa","a","b",4) -> "aaa" | =SUBSTITUTE("a","A","b") -> "a"
      =SUBSTITUTE("a","","b") -> "a" | =SUBSTITUTE("a","a","b",0) -> #VALUE!
      =LEN(SUBSTITUTE(REPT("a",32767),"a","bb")) -> #VALUE! | =TRIM("  a   b ") -> "a b"
      =CLEAN("a"&CHAR(7)&"b"&CHAR(10)) -> "ab" | =UPPER("straße éÿ") -> "STRAßE ÉŸ" | =LOWER("ÀΣ") -> "àσ"
      =PROPER("o'neill mac-DONALD 2nd élan") -> "O'Neill Mac-Donald 2Nd Élan" | =EXACT("a","A") -> FALSE
      =EXACT(1,"1") -> TRUE | =CONCATENATE("a",1,TRUE) -> "a1TRUE" | =CONCATENATE({"a","b"},1) -> {"a1","b1"}
      =CONCAT(A1:C2,{1;2}) -> "a1TRUEb12" | =CONCAT(A:XFD) -> "a1TRUEb"
      =TEXTJOIN("-",TRUE,A1:C2,"z") -> "a-1-TRUE-b-z" | =TEXTJOIN("-",FALSE,A1:C2) -> "a-1---TRUE-b"
      =TEXTJOIN({",",";"},,"a","","b","c") -> "a,b;c" | =TEXTJOIN(",",TRUE,#N/A) -> #N/A
      =TEXTJOIN("",1,REPT("a",32767),"b") -> #VALUE! | =CODE("€uro") -> 128 | =CODE("") -> #VALUE!
      =UNICODE("€") -> 8364 | =FIXED(1234.567,1) -> "1,234.6" | =FIXED(-1234.567) -> "-1,234.57"
      =FIXED(1234.567,-2,TRUE) -> "1200" | =FIXED(-0.001) -> "0.00" | =FIXED(1,128) -> #VALUE!)cases");
  EXPECT_EQ(Eval("=UNICODE(UNICHAR(128512))"), "128512");
}

TEST_F(BuiltinTest, Dates) {
  Check(R"(
      =DATE(2020,14,-5) -> 44222 | =DATE(2021,2,29) -> 44256 | =DATE(1900,2,29) -> 60 | =DATE(99,1,1) -> 36161
      =DATE(2020,0,1) -> 43800 | =DATE(1899,12,31) -> 693962 | =DATE(1900,1,0) -> 0 | =DATE(1900,1,-1) -> #NUM!
      =DATE(9999,12,32) -> #NUM! | =DATE(10000,1,1) -> #NUM! | =DATE(2020,1,1)=DATE(2019,13,"1") -> TRUE
      =YEAR(60)&MONTH(60)&DAY(60) -> "1900229" | =DAY(0) -> 0 | =YEAR(2958465.9) -> 9999 | =MONTH(-1) -> #NUM!
      =DAY("3/23/2002") -> 23 | =WEEKDAY(1) -> 1 | =WEEKDAY(43831) -> 4 | =WEEKDAY(43831,{2,3,11,14,17}) -> {3,2,3,7,4}
      =WEEKDAY(1,4) -> #NUM! | =EDATE("1/31/2020",{1,-2,13}) -> {43890,43799,44255} | =EDATE(1,-1) -> #NUM!
      =EOMONTH(43845.9,0) -> 43861 | =EOMONTH(43831,1.9) -> 43890 | =DAYS("3/1/1900","2/28/1900") -> 2
      =TIME(27,0,0) -> 0.125 | =TIME(0,750,0) -> 0.5208333333333334 | =TIME(1,-61,0) -> #NUM!
      =TIME(32768,0,0) -> #NUM! | =HOUR(1.75) -> 18 | =MINUTE("14:29:59.6") -> 30 | =SECOND(0.5/86400) -> 1
      =HOUR(-1) -> #NUM! | =DATEVALUE(" 2002-03-23 14:00") -> 37338 | =DATEVALUE("5") -> #VALUE!
      =DATEVALUE(5) -> #VALUE! | =TIMEVALUE("1/1/2020 6:00") -> 0.25 | =TODAY()=INT(NOW()) -> TRUE
      =TODAY()>45000 -> TRUE)");
  context.marks.uses1904 = true;
  Check(R"(
      =DATE(1904,1,1) -> 0 | =DATE(1903,12,31) -> #NUM! | =DATE(1998,7,5) -> 34519 | =YEAR(0) -> 1904 | =WEEKDAY(0) -> 6
      =EDATE(0,2) -> 60 | =VALUE("1/2/1904 12:00") -> 1.5 | =VALUE("12/31/1903") -> #VALUE! | =VALUE("36:00") -> 1.5
      =TEXT(17816.6079514,"ddd-mmm-yyy hh:mm:ss am/pm") -> "Sat-Oct-1952 02:35:27 PM"
      =TEXT(-1.5,"yyyy-mm-dd") -> "-1904-01-02" | =TEXT(-1.5,"[h]:mm") -> "-36:00" | =TEXT(2957004,"yyyy") -> #VALUE!
      =YEAR(2957003) -> 9999)");
}

TEST_F(BuiltinTest, Places) {
  Set("A1", "{1,2,3;4,5,6;7,8,9}");
  names[FoldCase(XTEXT("Block"))] = ValueOf("=A1:B2");
  context.caller = {sheet.Id(), {AreaOf("D5")}};
  Check(R"(
      =ROW() -> 5 | =COLUMN() -> 4 | =ROW(B7:C9) -> {7;8;9} | =COLUMN(B7:C9) -> {2,3} | =ROW(5) -> #VALUE!
      =ROW((A1,B2)) -> #REF! | =AREAS((A1,B2:C3)) -> 2 | =ADDRESS(2,28) -> "$AB$2"
      =ADDRESS(2,3,{2,3,4}) -> {"C$2","$C2","C2"}
      =ADDRESS(2,3,{1,2,3,4},FALSE) -> {"R2C3","R2C[3]","R[2]C3","R[2]C[3]"}
      =ADDRESS(1,1,,,"My sheet") -> "'My sheet'!$A$1" | =ADDRESS(0,1) -> #VALUE! | =ADDRESS(1,16385) -> #VALUE!
      =ADDRESS(1,1,5) -> #VALUE! | =OFFSET(A1,1,2) -> @[Book1]Sheet1!C2 | =OFFSET(A1:B2,1,0) -> @[Book1]Sheet1!A2:B3
      =OFFSET(C3,0,0,-2,-3) -> @[Book1]Sheet1!A2:C3 | =OFFSET(A1,0,0,3,) -> @[Book1]Sheet1!A1:A3
      =SUM(OFFSET(A1,0,0,2,2)) -> 12 | =OFFSET(A1,-1,0) -> #REF! | =OFFSET(A1,0,0,0) -> #REF!
      =OFFSET(1,0,0) -> #VALUE! | =OFFSET(A1,1E9,0) -> #REF! | =INDIRECT("B"&2) -> @[Book1]Sheet1!B2
      =SUM(INDIRECT("Sheet1!A:A")) -> 12 | =INDIRECT("block") -> @[Book1]Sheet1!A1:B2 | =INDIRECT("Nowhere!A1") -> #REF!
      =INDIRECT("?") -> #REF! | =INDIRECT("A1",FALSE) -> #REF! | =INDIRECT("r2c[-1]",FALSE) -> @[Book1]Sheet1!C2
      =INDIRECT("Sheet1!R[-1]C:R1C1",0) -> @[Book1]Sheet1!A1:D4 | =INDIRECT("C2",FALSE) -> @[Book1]Sheet1!B:B
      =INDIRECT("R[-5]C",FALSE) -> #REF! | =INDIRECT("R[x]C1",FALSE) -> #REF!)");
}

// What they read does not stand in the formula: they are calculated every time.
TEST_F(BuiltinTest, PlacesFoundWhileCalculating) {
  Follow("A1 -> =SUM(OFFSET(C1,0,0,2,1)) | B1 -> =INDIRECT(\"C\"&1) | C1 -> =C2*2 | C2 -> 1", "A1 -> 3 | B1 -> 2");
  Follow("C2 -> 2", "A1 -> 6 | B1 -> 4");
}

TEST_F(BuiltinTest, Lookups) {
  Set("A1", "{\"a\",\"b\",\"c\";1,2,3;\"x\",\"y\",empty}");
  Check(R"(
      =HLOOKUP("B",A1:C3,{2,3},FALSE) -> {2,"y"} | =HLOOKUP("bb",A1:C3,2) -> 2 | =HLOOKUP("z",A1:C3,2,FALSE) -> #N/A
      =HLOOKUP("a",A1:C3,4,FALSE) -> #REF! | =HLOOKUP("a",A1:C3,0,FALSE) -> #VALUE!
      =HLOOKUP("c",A1:C3,3,FALSE) -> empty | =LOOKUP(2.5,{1,2,3},{"a","b","c"}) -> "b" | =LOOKUP(0,{1,2}) -> #N/A
      =LOOKUP("b",A1:C2) -> 2 | =LOOKUP(2,{1,5;2,6;3,7}) -> 6 | =LOOKUP(3,{1;2;3},{4,5}) -> #N/A
      =LOOKUP(2,1/{1,0,1,0},{1,2,3,4}) -> 3 | =LOOKUP({1,3},{1,2,3}) -> {1,3})");
}

TEST_F(BuiltinTest, SearchesFromEitherEnd) {
  Set("A1", "{\"a*\",10;\"ab\",20;empty,30;\"AB\",40;5,50;2,60;9,70;5,80}");
  Check(R"(
      =XMATCH("ab",A1:A8) -> 2 | =XMATCH("a*",A1:A8) -> 1 | =XMATCH("a*",A1:A8,2,-1) -> 4
      =XMATCH("ab",A1:A8,0,-1) -> 4 | =XMATCH(6,A1:A8,-1) -> 5 | =XMATCH(6,A1:A8,-1,-1) -> 8 | =XMATCH(6,A1:A8,1) -> 7
      =XMATCH(1,A1:A8,-1) -> #N/A | =XMATCH(Z1,A1:A8) -> 3 | =XMATCH({2,"x"},A1:A8) -> {6,#N/A}
      =XMATCH(1,A1:B8) -> #VALUE! | =XMATCH(1,A1,3) -> #VALUE! | =XMATCH(#NUM!,A1:A8) -> #NUM!
      =XMATCH(2,{1,2,3},0,2) -> 2 | =XLOOKUP(9,A1:A8,B1:B8) -> @[Book1]Sheet1!B7
      =XLOOKUP("AB",A1:A8,A1:B8) -> @[Book1]Sheet1!A2:B2 | =XLOOKUP(7,A1:A8,B1:B8,"none") -> "none"
      =XLOOKUP(7,A1:A8,B1:B8) -> #N/A | =XLOOKUP(7,A1:A8,B1:B8,,1) -> @[Book1]Sheet1!B7
      =XLOOKUP({5;2},A1:A8,B1:B8,,,-1) -> {80;60} | =XLOOKUP(2,{1,2},{1,2;3,4}) -> {2;4}
      =XLOOKUP(2,{1,2},{1;2}) -> #VALUE!)");
}

TEST_F(BuiltinTest, SortedFilteredUnique) {
  Set("A1", "{3,\"b\";empty,\"B\";\"a\",\"x\";TRUE,1;#N/A,1;1,\"b\";\"A\",2;3,\"B\"}");
  Check(R"(
      =SORT(A1:A8) -> {1;3;3;"a";"A";TRUE;#N/A;empty} | =SORT(A1:A8,1,-1) -> {#N/A;TRUE;"a";"A";3;3;1;empty}
      =SORT({2,1;1,2;2,0},{1,2},{-1,1}) -> {2,0;2,1;1,2} | =SORT({3,1,2;6,4,5},2,-1,TRUE) -> {3,2,1;6,5,4}
      =SORT(5) -> {5} | =SORT({1,2},3) -> #VALUE! | =SORT({1,2},1,2) -> #VALUE! | =SORT({1,2},{1,2},{1,1,1}) -> #VALUE!
      =UNIQUE(A1:A8) -> {3;empty;"a";TRUE;#N/A;1} | =UNIQUE(A1:A8,,TRUE) -> {empty;TRUE;#N/A;1}
      =UNIQUE({1,2,1},TRUE) -> {1,2} | =UNIQUE(A1:B8) -> {3,"b";empty,"B";"a","x";TRUE,1;#N/A,1;1,"b";"A",2}
      =UNIQUE({1;1},,TRUE) -> #CALC! | =FILTER(A1:B8,A1:A8=3) -> #N/A | =FILTER(A1:B3,{1;0;TRUE}) -> {3,"b";"a","x"}
      =FILTER({1,2,3},{1,0,1}) -> {1,3} | =FILTER({1;2},{0;0}) -> #CALC! | =FILTER({1;2},{0;0},"none") -> "none"
      =FILTER({1;2},{1;0;1}) -> #VALUE! | =FILTER({1;2},{"x";1}) -> #VALUE! | =TRANSPOSE({1,2,3;4,5,6}) -> {1,4;2,5;3,6}
      =TRANSPOSE(A1:B1) -> {3;"b"} | =TRANSPOSE(7) -> 7)");
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
