// Literals and UTF-8, there and back.
#include "host/values/literal.h"

#include <gtest/gtest.h>

#include <string>

#include "host/text/utf8.h"
#include "host/values/value_order.h"
#include "tests/host/case_table.h"

namespace qcalc {
namespace {

std::string Printed(std::string_view text) {
  const Parsed<Value> value = ParseLiteral(text);
  return value ? PrintLiteral(*value) : "!" + value.Error().ToString();
}

TEST(Literal, ReadsAndPrints) {
  for (const auto& [literal, printed] : CasesOf(R"(
      1 -> 1 | -2.5 -> -2.5 | 1e-07 -> 1e-07 | 1.7976931348623157e+308 -> 1.7976931348623157e+308 | 5e-324 -> 0
      -4e-310 -> 0 | {1e-400} -> {0} | 0.30000000000000004 -> 0.30000000000000004
      0.1 -> 0.1 | -0 -> -0 | .5E1 -> 5 | "" -> "" | "a ""quoted"" word" -> "a ""quoted"" word" | true -> TRUE
      FALSE -> FALSE | #NULL! -> #NULL! | #DIV/0! -> #DIV/0! | #VALUE! -> #VALUE! | #REF! -> #REF! | #NUM! -> #NUM!
      #NAME? -> #NAME? | #n/a -> #N/A | #GETTING_DATA -> #GETTING_DATA | #SPILL! -> #SPILL! | #ERR77 -> #ERR77
      empty -> empty | {1,"a";TRUE,#N/A} -> {1,"a";TRUE,#N/A} | {5} -> {5} | { 1 , +2 ; 3 , EMPTY } -> {1,2;3,empty}
      {1,2;3} -> !line 1, column 7: expected 2 elements in row 2 of the array, as in its first row, found 1
      {""U+D83DU+000A"b",""U+0022} -> {""U+D83DU+000A"b",""""} | 1e14 -> 100000000000000 | -1e6 -> -1000000 | 1e15 -> 1e+15
      "abc -> !line 1, column 1: expected a closing quote for this text, found the end
      1 2 -> !line 1, column 3: expected the end of the value, found '2'
      {1,{2}} -> !line 1, column 4: expected a number, a text in quotes, TRUE, FALSE, an error or empty, found '{')"))
    EXPECT_EQ(Printed(literal), printed) << literal;
  EXPECT_EQ(Printed("\"\u00E4\u20AC\U0001F600 in two\nlines\""), "\"\u00E4\u20AC\U0001F600 in two\"U+000A\"lines\"");
  EXPECT_EQ(Printed("{\"" + std::string(32'768, 'x') + "\"}"),
            "!line 1, column 2: expected a text of at most 32767 characters, found 32768");
  for (const std::string bad :
       {"", "abc", "1e999", "#FOO", "-", "{", "{}", "{1", "{1,}", "--1", "\"\xFF\"", "TRUE1", "\"\"U+00G0", "\"\"U+0A"})
    EXPECT_EQ(Printed(bad)[0], '!') << bad;
}

TEST(Utf8, EveryUnitSurvivesAndNoOtherBytes) {
  // Lone surrogates too, and pairs, in every neighbourhood that 3 units can have.
  const unsigned edges[] = {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  for (const unsigned a : edges)
    for (const unsigned b : edges)
      for (const unsigned c : edges) {
        const XString text = {static_cast<XCHAR>(a), static_cast<XCHAR>(b), static_cast<XCHAR>(c)};
        ASSERT_EQ(FromUtf8(ToUtf8(text)), text);
      }
  EXPECT_EQ(ToUtf8(XTEXT("\xD83D\xDE00")), "\xF0\x9F\x98\x80");
  std::size_t badByte = 0;
  EXPECT_FALSE(FromUtf8("ab\xC3", &badByte));
  EXPECT_EQ(badByte, 2u);
  for (const std::string bytes :
       {"\x80", "\xC0\x80", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF8", "\xC3("})
    EXPECT_FALSE(FromUtf8(bytes)) << bytes;
}

TEST(SameValue, KnowsShapesTypesAndTolerance) {
  const auto check = [](std::string_view pairs, bool expected, const Tolerance& tolerance) {
    for (const auto& [left, right] : CasesOf(pairs))
      EXPECT_EQ(SameValue(*ParseLiteral(left), *ParseLiteral(right), tolerance), expected) << left << " and " << right;
  };
  check(R"({1,"a";TRUE,#N/A} -> {1,"a";TRUE,#N/A} | 0 -> -0)", true, {});
  check(R"(
      {5} -> 5 | {1,2} -> {1;2} | "a" -> "A" | empty -> "" | empty -> 0 | 1 -> TRUE | #N/A -> #VALUE!
      0.1 -> 0.10000000000000002)",
        false, {});
  const Tolerance near{1e-9, 1e-12};
  check("{1000} -> {1000.0000005} | 0 -> 1e-13", true, near);
  check("1000 -> 1000.00001 | 0 -> 1e-11", false, near);
}

}  // namespace
}  // namespace qcalc
