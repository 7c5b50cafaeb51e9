// Numbers to texts, texts to numbers, and the order of values.
#include "host/values/conversion.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/values/number_writing.h"
#include "host/values/value_order.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class ConversionTest : public ModelTest {};

// As recorded from Excel.
TEST_F(ConversionTest, NumbersToTexts) {
  Check(R"(
      =1234567.8901234567&"" -> "1234567.89012346" | =999999.9999999999&"" -> "1000000"
      =-1.2345678901234568E15&"" -> "-1234567890123460" | =1.2345678901234567E19&"" -> "12345678901234600000"
      =1.2345678901234568E20&"" -> "1.23456789012346E+20" | =2E50&"" -> "2E+50" | =(0.1+0.2)&"" -> "0.3"
      =1.23456789E-5&"" -> "0.0000123456789" | =1.2345678901234568E-5&"" -> "1.23456789012346E-05"
      =5.6789012345E-8&"" -> "0.000000056789012345" | =5.67890123456E-8&"" -> "5.67890123456E-08"
      =9.999999999999999E-19&"" -> "0.000000000000000001" | =9.999999999999999E-20&"" -> "1E-19"
      =1.0000000000001235E-99&"" -> "1.0000000000001E-99" | =9.99999999999999E99&"" -> "1E+100"
      =-0&"" -> "0" | =5e-324&"" -> "0" | =99999999999999999999&"" -> "1E+20" | =0.9999999999999999&"" -> "1")");
  EXPECT_EQ(ToUtf8(NumberToText(-1234.5, XTEXT(','))), "-1234,5");
}

TEST_F(ConversionTest, TextsToNumbers) {
  Check(R"cases(
      =--"100" -> 100 | =--"-2.3" -> -2.3 | =--"+5" -> 5 | =--".5" -> 0.5 | =--"5." -> 5 | =--" 100 " -> 100
      =--" + 100" -> 100 | =--".5e2" -> 50 | =--"123e+5" -> 12300000 | =--"$1,000" -> 1000 | =--"$-5" -> -5
      =--"-$5" -> -5 | =--"$.5" -> 0.5 | =--"$1,000e2" -> 1e+05 | =--"1,0000" -> 10000 | =--"1,000,0000" -> 1e+07
      =--"30%" -> 0.3 | =--"30 %" -> 0.3 | =--"(2,553.57)" -> -2553.57 | =--"4:48:00" -> 0.2 | =--"4:48 PM" -> 0.7
      =--"12:00 am" -> 0 | =--"25:30" -> 1.0625 | =--"23-Mar-2002" -> 37338 | =--"3/23/2002" -> 37338
      =--"2002-03-23" -> 37338 | =--"Mar 23, 2002" -> 37338 | =--"1/1/1900" -> 1 | =--"2/28/1900" -> 59
      =--"2/29/1900" -> 60 | =--"3/1/1900" -> 61 | =--"2/29/2000" -> 36585 | =--"12/31/9999" -> 2958465
      =--"3/23/2002 12:00" -> 37338.5 | =--"1e-320" -> 0 | =--"1e-99999999999" -> 0 | =--"1e400" -> #NUM!
      =--"0e400" -> 0)cases");
  for (const std::string text :
       {"",          "ABC",       "1+1",  "1 1",     "1,00",     "1,00,000", "1,0,000",   ",300",          "0.233,4",
        "1e2.5",     "++100",     "$$5",  "-",       "+",        "$",        "2,553.57-", "(-5)",          "(5",
        "5)",        "5%%",       "1e",   ".",       "TRUE",     "0x10",     "inf",       "nan",           "\u00A05",
        "2/30/2002", "13/1/2002", "4:60", "4:48 XM", "13:00 PM", "1:2:3:4",  "1/1/1899",  "99999999999:00"})
    EXPECT_EQ(Eval("=--\"" + text + "\""), "#VALUE!") << text;
}

TEST(Conversion, FollowsTheTypes) {
  EXPECT_EQ(PrintLiteral(ToNumber(CellView())), "0");
  EXPECT_EQ(PrintLiteral(ToText(CellView())), "\"\"");
  EXPECT_EQ(PrintLiteral(ToBoolean(CellView::Text(XTEXT("tRue")))), "TRUE");
  EXPECT_EQ(PrintLiteral(ToBoolean(CellView::Text(XTEXT("1")))), "#VALUE!");
  for (const auto convert :
       {+[](const CellView& c) { return ToNumber(c); }, +[](const CellView& c) { return ToText(c); },
        +[](const CellView& c) { return ToBoolean(c); }})
    EXPECT_EQ(PrintLiteral(convert(CellView::Error(xlerrNA))), "#N/A");
}

TEST(CompareTexts, OrdersWithoutCase) {
  // Each before the next.
  const std::vector<XStringView> ascending = {XTEXT(""),  XTEXT("1"),    XTEXT("10"),    XTEXT("9"),
                                              XTEXT(" "), XTEXT("!"),    XTEXT("_"),     XTEXT("a"),
                                              XTEXT("B"), XTEXT("coop"), XTEXT("co-op"), XTEXT("coops")};
  for (std::size_t i = 0; i < ascending.size(); ++i)
    for (std::size_t j = 0; j < ascending.size(); ++j)
      EXPECT_EQ(CompareTexts(ascending[i], ascending[j]), i <=> j) << i << " against " << j;
  EXPECT_TRUE(CompareTexts(XTEXT("STRASSE\u00C4"), XTEXT("strasse\u00E4")) == 0);
  EXPECT_TRUE(CompareTexts(XTEXT("a-b"), XTEXT("a'b")) != 0);
}

}  // namespace
}  // namespace qcalc
