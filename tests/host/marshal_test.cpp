// How arguments are laid out, what type texts say, and how results are shown.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/addin/arguments.h"
#include "host/api/type_text.h"
#include "host/scripts/show_table.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

TEST(Marshalling, JunkStandsBehindTextsAndShortIntegers) {
  RegisteredFunction function;
  function.type = std::get<TypeText>(ParseTypeText(XTEXT("UAIHJQQ")));
  const Value operands[] = {Value::Boolean(true), Value::Number(-1),    Value::Number(65'535),
                            Value::Number(-1),    Value::Boolean(true), Value::Text(XTEXT("ab"))};
  ArgumentCache cache;
  Arguments arguments(cache, {}, {});
  ASSERT_FALSE(arguments.Build(function, operands));
  const std::span<const std::uintptr_t> words = arguments.Words();
  EXPECT_THAT(words.first(4), ::testing::ElementsAre(0xA7A7A7A7A7A70001u, 0xA7A7A7A7A7A7FFFFu, 0xA7A7A7A7A7A7FFFFu,
                                                     0xA7A7A7A7FFFFFFFFu));
  EXPECT_EQ(*reinterpret_cast<const std::uint64_t*>(words[4]), 0xA7A7A7A700000001u);
  const XCHAR* const text = reinterpret_cast<const XLOPER12*>(words[5])->val.str;
  EXPECT_EQ(text[0], 2);
  EXPECT_EQ(static_cast<std::uint16_t>(text[3]), 0xA7A7);
}

TEST(Marshalling, SubnormalNumbersComeInAsZero) {
  XLOPER12 number{}, array{};
  number.xltype = xltypeNum;
  number.val.num = -4e-310;
  array.xltype = xltypeMulti;
  array.val.array = {&number, 1, 1};
  EXPECT_EQ(PrintLiteral(std::get<Value>(Marshal<Wide>::Read(number, 0).value)), "0");
  EXPECT_EQ(PrintLiteral(std::get<Value>(Marshal<Wide>::Read(array, 0).value)), "{0}");
}

TEST(TypeTexts, WhatExcelTakesAndRefuses) {
  for (const XStringView good : {XTEXT("UQUQQ$"), XTEXT("Q"), XTEXT("UJC%C%JC%C%A"), XTEXT("UUQ!#"), XTEXT("RPJJPP"),
                                 XTEXT(">X"), XTEXT("1K%"), XTEXT("UQ$&")})
    EXPECT_TRUE(std::holds_alternative<TypeText>(ParseTypeText(good))) << static_cast<char>(good[0]);
  for (const XStringView bad : {XTEXT(""), XTEXT("$"), XTEXT("UQ#$"), XTEXT("UQ#&"), XTEXT("UQ$$"), XTEXT("U$Q"),
                                XTEXT("UQ%"), XTEXT("UZ"), XTEXT("2K%"), XTEXT("1Q"), XTEXT("U\u00E4")})
    EXPECT_TRUE(std::holds_alternative<std::string>(ParseTypeText(bad))) << bad.size();
  const auto type = std::get<TypeText>(ParseTypeText(XTEXT("UJC%U!#")));
  EXPECT_EQ(type.arguments, (std::vector<TypeLetter>{{'J', false}, {'C', true}, {'U', false}}));
  EXPECT_TRUE(type.isVolatile && type.isMacroEquivalent && !type.isThreadSafe && type.TakesReferences());
}

TEST(Tables, AreAlignedAndSayWhatStandsInThem) {
  EXPECT_EQ(ShowTable(*ParseLiteral("{\"name\",\"qty\";\"\u00E4pple\",10.5;empty,\"10.5\";\"\",TRUE;\" b\",#N/A;"
                                    "\"\u6F22e\u0301\"U+001BU+D83D,100000}"),
                      6),
            "   \u2502 1           2\n"
            "\u2500\u2500\u2500\u253C\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500"
            "\u2500\u2500\n"
            " 1 \u2502 name   qty\n"
            " 2 \u2502 \u00E4pple    10.5\n"
            " 3 \u2502        \"10.5\"\n"
            " 4 \u2502 \"\"     TRUE\n"
            " 5 \u2502 \" b\"   #N/A\n"
            " 6 \u2502 \u6F22e\u0301\u241B\uFFFD  100000\n");
  EXPECT_EQ(ShowTable(*ParseLiteral("\"5\""), 5), " \"5\"\n");
  EXPECT_THAT(ShowTable(Value::OfArray(ArrayBuilder(1, 1).Finish()), 5), ::testing::EndsWith(" 1 \u2502\n"));
}

TEST(Tables, AreCut) {
  ArrayBuilder builder(12'345, 40);
  builder.Set(12'344, 0, CellView::Number(7));
  const XString longText(40, 'x');
  builder.Set(0, 0, CellView::Text(longText));
  const XString wide(40, XTEXT('\u6F22'));
  builder.Set(1, 0, CellView::Text(wide));
  const std::string table = ShowTable(Value::OfArray(builder.Finish()), 4);
  EXPECT_THAT(table, ::testing::HasSubstr("     1 \u2502 " + std::string(32, 'x') + "\u2026\n"));
  EXPECT_EQ(std::count(table.begin(), table.end(), '\xA2'), 16) << "characters of two columns each";
  EXPECT_THAT(table, ::testing::HasSubstr("\u22EE \u2502 12,341 rows not shown\n 12345 \u2502 "));
  EXPECT_THAT(table, ::testing::EndsWith(" columns to the right not shown\n 12,345 rows x 40 columns in all\n"));
}

}  // namespace
}  // namespace qcalc
