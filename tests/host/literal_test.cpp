// Literals and UTF-8, there and back.
#include "host/values/literal.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>

#include "host/text/utf8.h"
#include "host/values/value_order.h"

namespace qcalc {
namespace {

std::string Printed(std::string_view text) {
  const Parsed<Value> value = ParseLiteral(text);
  return value ? PrintLiteral(*value) : "!" + value.Error().ToString();
}

TEST(Literal, PrintsAsWritten) {
  for (const std::string text : {"1",
                                 "-2.5",
                                 "1e-07",
                                 "1.7976931348623157e+308",
                                 "5e-324",
                                 "0.1",
                                 "-0",
                                 R"("")",
                                 R"("a ""quoted"" word")",
                                 "TRUE",
                                 "FALSE",
                                 "#NULL!",
                                 "#DIV/0!",
                                 "#VALUE!",
                                 "#REF!",
                                 "#NAME?",
                                 "#NUM!",
                                 "#N/A",
                                 "#GETTING_DATA",
                                 "#SPILL!",
                                 "#ERR77",
                                 "empty",
                                 R"({1,"a";TRUE,#N/A})",
                                 "{5}",
                                 "{empty,-1}",
                                 "\"\u00E4\u20AC\U0001F600\"",
                                 "\"two\nlines\""})
    EXPECT_EQ(Printed(text), text);
}

TEST(Literal, ReadsOtherSpellings) {
  EXPECT_EQ(Printed(" true "), "TRUE");
  EXPECT_EQ(Printed("{ 1 , +2 ;\n 3 , EMPTY }"), "{1,2;3,empty}");
  EXPECT_EQ(Printed("#n/a"), "#N/A");
  EXPECT_EQ(Printed(".5E1"), "5");
}

TEST(Literal, SaysWhereAndWhatWasExpected) {
  EXPECT_EQ(Printed("{1,2;3}"),
            "!line 1, column 7: expected 2 elements in row 2 of the array, as in its first row, found 1");
  EXPECT_EQ(Printed("\"abc"), "!line 1, column 1: expected a closing quote for this text, found the end");
  EXPECT_EQ(Printed("1 2"), "!line 1, column 3: expected the end of the value, found '2'");
  EXPECT_EQ(Printed("{1,{2}}"),
            "!line 1, column 4: expected a number, a text in quotes, TRUE, FALSE, an error or empty, found '{'");
  for (const std::string text : {"", "abc", "1e999", "#FOO", "-", "{", "{}", "{1", "{1,}", "--1", "\"\xFF\"", "TRUE1"})
    EXPECT_EQ(Printed(text)[0], '!') << text;
}

TEST(Literal, EveryDoubleReadsBackAsItself) {
  std::mt19937_64 bits(20260);
  for (int i = 0; i < 20'000; ++i) {
    const double number = std::bit_cast<double>(bits());
    if (!std::isfinite(number)) continue;
    const Parsed<Value> value = ParseLiteral(PrintNumber(number));
    ASSERT_TRUE(value);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value->AsNumber()), std::bit_cast<std::uint64_t>(number));
  }
}

TEST(Utf8, EveryUnitSurvives) {
  // Lone surrogates too, and pairs, in every neighbourhood that 3 units can have.
  std::mt19937 random(7);
  const unsigned edges[] = {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  for (const unsigned a : edges)
    for (const unsigned b : edges)
      for (const unsigned c : edges) {
        const XString text = {static_cast<XCHAR>(a), static_cast<XCHAR>(b), static_cast<XCHAR>(c)};
        ASSERT_EQ(FromUtf8(ToUtf8(text)), text);
      }
  EXPECT_EQ(ToUtf8(XTEXT("\xD83D\xDE00")), "\xF0\x9F\x98\x80");
}

TEST(Utf8, RefusesOtherBytes) {
  std::size_t badByte = 0;
  EXPECT_FALSE(FromUtf8("ab\xC3", &badByte));
  EXPECT_EQ(badByte, 2u);
  for (const std::string bytes :
       {"\x80", "\xC0\x80", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF8", "\xC3("})
    EXPECT_FALSE(FromUtf8(bytes)) << bytes;
}

TEST(SameValue, KnowsShapesTypesAndTolerance) {
  const auto same = [](std::string_view left, std::string_view right, const Tolerance& tolerance = {}) {
    return SameValue(*ParseLiteral(left), *ParseLiteral(right), tolerance);
  };
  const Tolerance near{1e-9, 1e-12};
  EXPECT_TRUE(same("{1,\"a\";TRUE,#N/A}", "{1,\"a\";TRUE,#N/A}"));
  for (const auto& [left, right] : {std::pair("{5}", "5"),
                                    {"{1,2}", "{1;2}"},
                                    {"\"a\"", "\"A\""},
                                    {"empty", "\"\""},
                                    {"empty", "0"},
                                    {"1", "TRUE"},
                                    {"#N/A", "#VALUE!"},
                                    {"0.1", "0.10000000000000002"}})
    EXPECT_FALSE(same(left, right)) << left << " and " << right;
  EXPECT_TRUE(same("0", "-0"));
  EXPECT_TRUE(same("{1000}", "{1000.0000005}", near));
  EXPECT_FALSE(same("1000", "1000.00001", near));
  EXPECT_TRUE(same("0", "1e-13", near));
  EXPECT_FALSE(same("0", "1e-11", near));
}

}  // namespace
}  // namespace qcalc
