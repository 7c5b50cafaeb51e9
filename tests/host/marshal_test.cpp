// Values across the API, in both widths, and the loans of what hangs on them.
#include "host/api/marshal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "host/addin/arguments.h"
#include "host/api/loans.h"
#include "host/api/type_text.h"
#include "host/scripts/show_table.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

template <typename Width>
Reading ThroughTheApi(const ApiValue& value, IDSHEET current, std::vector<std::byte>& memory,
                      typename Width::Oper& oper) {
  memory.assign(Marshal<Width>::BlockBytes(value, {current}), std::byte{0xA7});
  Marshal<Width>::Write(value, {current}, memory.data(), oper);
  return Marshal<Width>::Read(oper, current);
}

template <typename Width>
class BothWidths : public ::testing::Test {};
using Widths = ::testing::Types<Wide, Narrow>;
TYPED_TEST_SUITE(BothWidths, Widths);

TYPED_TEST(BothWidths, ValuesSurviveTheWay) {
  const std::string longest(255, 'x');
  for (const std::string& literal :
       {std::string("1.5"), std::string("TRUE"), std::string("#N/A"), std::string("empty"), std::string("\"\""),
        "\"" + longest + "\"", std::string("{1,\"a\",TRUE;#DIV/0!,empty,\"\"}")}) {
    std::vector<std::byte> memory;
    typename TypeParam::Oper oper;
    const Value value = *ParseLiteral(literal);
    ASSERT_TRUE(Marshal<TypeParam>::Fits(value));
    const Reading reading = ThroughTheApi<TypeParam>(value, 1, memory, oper);
    EXPECT_EQ(reading.defect, "");
    EXPECT_EQ(PrintLiteral(std::get<Value>(reading.value)), literal);
  }
}

TYPED_TEST(BothWidths, ReferencesTakeTheFormOfTheirSheet) {
  const Reference cells{7, {{1, 2, 3, 4}}};
  const Reference two{7, {{1, 2, 3, 4}, {9, 9, 9, 9}}};
  std::vector<std::byte> memory;
  typename TypeParam::Oper oper;
  Reading reading = ThroughTheApi<TypeParam>(Value::OfReference(cells), 7, memory, oper);
  EXPECT_EQ(oper.xltype, xltypeSRef);
  EXPECT_EQ(std::get<Value>(reading.value).AsReference(), cells);
  reading = ThroughTheApi<TypeParam>(Value::OfReference(cells), 8, memory, oper);
  EXPECT_EQ(oper.xltype, xltypeRef);
  EXPECT_EQ(std::get<Value>(reading.value).AsReference(), cells);
  reading = ThroughTheApi<TypeParam>(Value::OfReference(two), 7, memory, oper);
  EXPECT_EQ(oper.xltype, xltypeRef);
  EXPECT_EQ(std::get<Value>(reading.value).AsReference(), two);
}

TEST(Marshalling, WhatDoesNotFit) {
  const Reference wide{1, {{0, 70'000, 0, 0}}};
  EXPECT_TRUE(Marshal<Wide>::Fits(Value::OfReference(wide)));
  EXPECT_FALSE(Marshal<Narrow>::Fits(Value::OfReference(wide)));
  EXPECT_TRUE(Marshal<Wide>::Fits(Value::Text(XString(32'767, 'x'))));
  EXPECT_FALSE(Marshal<Wide>::Fits(Value::Text(XString(32'768, 'x'))));
  EXPECT_FALSE(Marshal<Narrow>::Fits(Value::Text(XString(256, 'x'))));
  EXPECT_TRUE(Marshal<Narrow>::Fits(Value::OfArray(ArrayBuilder(65'535, 1).Finish())));
  EXPECT_FALSE(Marshal<Narrow>::Fits(Value::OfArray(ArrayBuilder(65'536, 1).Finish())));
}

TEST(Marshalling, JunkStandsBehindTextsAndShortIntegers) {
  std::vector<std::byte> memory;
  XLOPER12 oper;
  ThroughTheApi<Wide>(Value::Text(XTEXT("ab")), 1, memory, oper);
  EXPECT_EQ(oper.val.str[0], 2);
  EXPECT_EQ(static_cast<std::uint16_t>(oper.val.str[3]), 0xA7A7);
  ThroughTheApi<Wide>(Value::Boolean(true), 1, memory, oper);
  std::uint64_t word;
  std::memcpy(&word, &oper, sizeof word);
  EXPECT_EQ(word, 0xA7A7A7A700000001u);

  RegisteredFunction function;
  function.type = std::get<TypeText>(ParseTypeText(XTEXT("UAIHJ")));
  const Value operands[] = {Value::Boolean(true), Value::Number(-1), Value::Number(65'535), Value::Number(-1)};
  ArgumentCache cache;
  Arguments arguments(cache, {});
  ASSERT_FALSE(arguments.Build(function, operands));
  EXPECT_THAT(arguments.Words(), ::testing::ElementsAre(0xA7A7A7A7A7A70001u, 0xA7A7A7A7A7A7FFFFu, 0xA7A7A7A7A7A7FFFFu,
                                                        0xA7A7A7A7FFFFFFFFu));
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

TEST(Loans, LoansAndTheirEnd) {
  Complaints complaints;
  Loans loans(complaints);
  std::byte* first = loans.Lend(16, {"F", "xlCoerce"});
  std::byte* second = loans.Lend(16, {"F", "xlCoerce"});
  loans.Lend(16, {"G", "xlfCaller"});
  EXPECT_EQ(first[15], std::byte{0xA7});
  EXPECT_EQ(loans.TakeBack(first), Loans::Receipt::kTaken);
  EXPECT_EQ(loans.TakeBack(first), Loans::Receipt::kTakenBefore);
  EXPECT_EQ(loans.TakeBack(&loans), Loans::Receipt::kUnknown);
  EXPECT_TRUE(loans.IsLent(second));
#if !defined(__SANITIZE_ADDRESS__)
  EXPECT_EQ(first[0], std::byte{0xDD}) << "memory given back is poisoned";
#endif
  EXPECT_THAT(loans.Close(), ::testing::ElementsAre(::testing::StartsWith("F kept 1 value of xlCoerce"),
                                                    ::testing::StartsWith("G kept 1 value of xlfCaller")));
  EXPECT_THAT(loans.Close(), ::testing::IsEmpty());
}

TEST(Tables, AreAlignedAndSayWhatStandsInThem) {
  EXPECT_EQ(ShowTable(*ParseLiteral("{\"name\",\"qty\";\"\u00E4pple\",10.5;empty,\"10.5\";\"\",TRUE;\" b\",#N/A}"), 5),
            "   \u2502 1           2\n"
            "\u2500\u2500\u2500\u253C\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500\u2500"
            "\u2500\u2500\n"
            " 1 \u2502 name   qty\n"
            " 2 \u2502 \u00E4pple    10.5\n"
            " 3 \u2502        \"10.5\"\n"
            " 4 \u2502 \"\"     TRUE\n"
            " 5 \u2502 \" b\"   #N/A\n");
  EXPECT_EQ(ShowTable(*ParseLiteral("\"5\""), 5), " \"5\"\n");
  EXPECT_THAT(ShowTable(Value::OfArray(ArrayBuilder(1, 1).Finish()), 5), ::testing::EndsWith(" 1 \u2502\n"));
}

TEST(Tables, AreCut) {
  ArrayBuilder builder(12'345, 40);
  for (std::int32_t row = 0; row < 12'345; ++row) builder.Set(row, 0, CellView::Number(row + 1));
  const XString longText(40, 'x');
  builder.Set(0, 1, CellView::Text(longText));
  const Value array = Value::OfArray(builder.Finish());
  const std::string table = ShowTable(array, 4);
  EXPECT_THAT(table, ::testing::HasSubstr("     3 \u2502     3\n"
                                          "     \u22EE \u2502 12,341 rows not shown\n"
                                          " 12345 \u2502 12345\n"));
  EXPECT_THAT(table, ::testing::HasSubstr("     1 \u2502     1  " + std::string(32, 'x') + "\u2026\n"));
  EXPECT_THAT(table, ::testing::EndsWith(" columns to the right not shown\n 12,345 rows x 40 columns in all\n"));
  EXPECT_THAT(ShowTable(array, 1), ::testing::HasSubstr("\u2026\n \u22EE \u2502 12,344 rows not shown\n"));
}

}  // namespace
}  // namespace qcalc
