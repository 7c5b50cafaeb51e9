#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <span>
#include <vector>

#include "frame/convert/convert_array.h"
#include "frame/convert/convert_scalar.h"
#include "frame/values/array_builder.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace quillmere {
namespace {

using enum ElementKind;
using ::testing::ElementsAre;
using Shape = CVectorConvertParamsBase::Shape;
constexpr XStringView kName = XTEXT("Data");

/// The message that `work` raises as a conversion failure.
XString MessageOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const CXlConversionException& failure) {
    return XString(failure.Message());
  }
  return XTEXT("nothing raised");
}

/// What a strict conversion of a value to that kind raises.
template <ElementKind kind>
XString Refusal(const CXlOper& value) {
  return MessageOf([&] { ConvertTo<kind>(value, true); });
}

/// What the conversion of an argument raises.
template <class Params>
XString Refusal(const CXlOper& argument, const Params& params) {
  return MessageOf([&] { ConvertArgument(argument, params); });
}

/// An array of numbers, 0 for an empty cell; counting from 1 when none are given.
CXlOper Array(std::int64_t rows, std::int64_t columns, const std::vector<double>& numbers = {}) {
  CXlArrayBuilder builder(rows, columns);
  for (std::int64_t at = 0; at < rows * columns; ++at) {
    const double number = numbers.empty() ? static_cast<double>(at + 1) : numbers[static_cast<std::size_t>(at)];
    *builder.At(at / columns, at % columns) = number == 0 ? EmptyCell() : NumberCell(number);
  }
  return builder.Finish();
}

/// Answers xlCoerce for texts as Excel does for the two texts used here.
void ReadTexts(testing::FakeExcel& excel) {
  excel.On(xlCoerce, [](std::span<XLOPER12* const> arguments, XLOPER12& result) {
    const XStringView text = CellText(*arguments[0]);
    const std::uint32_t type = static_cast<std::uint32_t>(arguments[1]->val.w);
    const bool isNumber = type == xltypeNum && text == XTEXT("1,234");
    result = isNumber ? NumberCell(1234) : BooleanCell(true);
    return isNumber || (type == xltypeBool && text == XTEXT("true")) ? xlretSuccess : xlretFailed;
  });
}

TEST(ConvertScalar, FollowsTheKindOfTheValue) {
  EXPECT_EQ(ConvertTo<kNumber>(CXlOper::Integer(-3), true), -3);
  EXPECT_TRUE(ConvertTo<kBoolean>(CXlOper::Number(-0.5), true));
  EXPECT_EQ(ConvertTo<kString>(CXlOper::Boolean(false), true), XTEXT("FALSE"));
  EXPECT_EQ(ConvertTo<kError>(CXlOper::Text(XTEXT("#num!")), true), xlerrNum);
  EXPECT_EQ(ConvertTo<kNumber>(Array(2, 2), true), 1);
  EXPECT_THROW(ConvertTo<kNumber>(CXlOper(), true), CXlUninitializedOperException);
  const CXlOper error = CXlOper::Error(xlerrNA);
  EXPECT_EQ(ConvertTo<kNumber>(error, false), 0);
  EXPECT_EQ(ConvertTo<kString>(error, false), XTEXT(""));
  EXPECT_EQ(Refusal<kString>(error), XTEXT("Expected string"));
  EXPECT_EQ(Refusal<kError>(CXlOper::Number(42)), XTEXT("Expected error"));
  EXPECT_EQ(Refusal<kBoolean>(CXlOper::Missing()), XTEXT("Expected boolean"));
}

TEST(ConvertScalar, CutsNumbersTowardsZeroWithinTheRange) {
  const auto to = [](double number) { return CXlOper::Number(number); };
  EXPECT_EQ(ConvertTo<kLongInteger>(to(2147483647.9), true), 2147483647);
  EXPECT_EQ(ConvertTo<kLongInteger>(to(-2147483648.9), true), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(ConvertTo<kShortInteger>(to(-32768.5), true), -32768);
  EXPECT_EQ(ConvertTo<kUnsignedShortInteger>(to(65535.5), true), 65535);
  EXPECT_EQ(Refusal<kLongInteger>(to(2147483648.0)), XTEXT("Expected long integer"));
  EXPECT_EQ(Refusal<kShortInteger>(to(32768)), XTEXT("Expected short integer"));
  EXPECT_EQ(Refusal<kUnsignedShortInteger>(to(-1)), XTEXT("Expected unsigned short integer"));
  EXPECT_EQ(Refusal<kInteger>(to(1e300)), XTEXT("Expected integer"));
}

TEST(ConvertScalar, AsksExcelToReadTexts) {
  testing::FakeExcel excel;
  ReadTexts(excel);
  EXPECT_EQ(ConvertTo<kInteger>(CXlOper::Text(XTEXT("1,234")), true), 1234);
  EXPECT_TRUE(ConvertTo<kBoolean>(CXlOper::Text(XTEXT("true")), true));
  EXPECT_EQ(excel.Calls(xlCoerce), 2);
  EXPECT_EQ(Refusal<kNumber>(CXlOper::Text(XTEXT("12"))), XTEXT("Expected number"));
  excel.Give(xlCoerce, [&] { return excel.LendText(XTEXT("not what was asked for")); });
  EXPECT_EQ(ConvertTo<kNumber>(CXlOper::Text(XTEXT("12")), false), 0);
}

TEST(ConvertArgument, ScalarMessages) {
  const std::int32_t codes[] = {1, 2, 3};
  const XStringView words[] = {XTEXT("Asc"), XTEXT("Des")};
  const CScalarConvertParams<kLongInteger> number(kName);
  const auto code = CScalarConvertParams<kLongInteger>(kName).OneOf(codes);
  const auto word = CScalarConvertParams<kString>(kName).OneOf(words);
  EXPECT_EQ(ConvertArgument(CXlOper::Number(2.9), code), 2);
  EXPECT_EQ(ConvertArgument(CXlOper::Text(XTEXT("DES")), word), XTEXT("DES"));
  EXPECT_THROW(ConvertArgument(CXlOper(), number), CXlUninitializedOperException);
  EXPECT_EQ(Refusal(CXlOper::Missing(), number), XTEXT("Data is not initialized. Expected long integer."));
  EXPECT_EQ(Refusal(CXlOper::Error(xlerrNA), number), XTEXT("Failed to convert Data from error to long integer"));
  EXPECT_EQ(Refusal(CXlOper::Number(1e10), number), XTEXT("Failed to convert Data from number to long integer"));
  EXPECT_EQ(Refusal(CXlOper::Number(4), code), XTEXT("Expected one of 1, 2, 3 for Data"));
  EXPECT_EQ(Refusal(CXlOper::Text(XTEXT("Up")), word), XTEXT("Expected one of Asc, Des for Data"));
}

TEST(ConvertArgument, TakesTheFirstKindThatFits) {
  testing::FakeExcel excel;
  ReadTexts(excel);
  const CConvertParamsBase params(kName);
  EXPECT_EQ((ConvertArgumentToAny<kNumber, kString>(CXlOper::Text(XTEXT("1,234")), params).index()), 0u);
  EXPECT_EQ((ConvertArgumentToAny<kNumber, kString>(CXlOper::Text(XTEXT("words")), params).index()), 1u);
  EXPECT_EQ(MessageOf([&] { ConvertArgumentToAny<kNumber, kString>(CXlOper::Error(xlerrNA), params); }),
            XTEXT("Failed to convert Data to any of the permitted types"));
  EXPECT_EQ(MessageOf([&] { ConvertArgumentToAny<kNumber, kString>(CXlOper::Missing(), params); }),
            XTEXT("Data is not initialized"));
  EXPECT_EQ(MessageOf([&] { params.ThrowLabelNotFound(XTEXT("{0}")); }), XTEXT("Label {0} not found in Data"));
}

TEST(ConvertArgument, ChecksTheCounts) {
  using Params = CVectorConvertParams<kNumber>;
  const Params vector(kName, Shape::kVector), matrix(kName, Shape::kMatrix), list(kName, Shape::kList);
  const struct {
    CXlOper argument;
    Params params;
    XStringView told;
  } cases[] = {
      {CXlOper::Missing(), vector, XTEXT("Data is not initialized. Expected number vector.")},
      {CXlOper::Missing(), matrix, XTEXT("Data is not initialized. Expected number matrix.")},
      {Array(2, 2), vector, XTEXT("Expected vector for Data")},
      {Array(2, 1), Params(vector).LeastValues(4), XTEXT("Expected at least 4 values for Data")},
      {Array(2, 2), Params(matrix).Rows(1), XTEXT("Expected 1 row in Data")},
      {Array(2, 2), Params(matrix).Columns(3), XTEXT("Expected 3 columns in Data")},
      {Array(2, 1), Params(vector).Values(1), XTEXT("Expected 1 value in Data")},
      {Array(2, 2), Params(matrix).LeastRows(3), XTEXT("Expected at least 3 rows for Data")},
      {Array(2, 2), Params(matrix).LeastColumns(3), XTEXT("Expected at least 3 columns for Data")},
      {Array(2, 2, {1, 2, 3, 0}), Params(matrix).FullRows(), XTEXT("Expected 2 values in row 2 of Data")},
      {Array(3, 2, {1, 2, 0, 4, 5, 0}), Params(matrix).FullColumns(), XTEXT("Expected 3 values in column 2 of Data")},
      {CXlOper::Empty(), list, XTEXT("Expected at least 1 value for Data")},
      {Array(1, 3, {1, 0, 0}), Params(list).Values(2), XTEXT("Expected 2 values in Data")},
  };
  for (const auto& each : cases) EXPECT_EQ(Refusal(each.argument, each.params), each.told);
}

TEST(ConvertArgument, KeepsTheShape) {
  using Params = CVectorConvertParams<kInteger>;
  const auto row = ConvertArgument(Array(1, 3), Params(kName, Shape::kVector).LeastValues(3).Columns(3));
  EXPECT_EQ(row.rows, 1);
  EXPECT_EQ(row.columns, 3);
  EXPECT_THAT(ConvertArgument(CXlOper::Number(7.7), Params(kName, Shape::kVector)).Values(), ElementsAre(7));
  EXPECT_EQ(ConvertArgument(CXlOper::Missing(), Params(kName, Shape::kMatrix).Optional()).Count(), 0);
  const auto list = ConvertArgument(Array(2, 2, {0, 5, 0, 6}), Params(kName, Shape::kList));
  EXPECT_EQ(list.rows, 2);
  EXPECT_THAT(list.Values(), ElementsAre(5, 6));
}

}  // namespace
}  // namespace quillmere
