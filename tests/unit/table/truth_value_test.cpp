// Cells as TRUE, FALSE or neither.
#include "table/truth_value.h"

#include <gtest/gtest.h>

#include "frame/values/xl_oper.h"

namespace quillmere::testing {
namespace {

TEST(TruthValue, ReadsEveryKindOfCell) {
  using enum TruthValue;
  const struct {
    XLOPER12 cell;
    TruthValue truth;
  } values[] = {{NumberCell(0), kFalse},  {NumberCell(-0.0), kFalse}, {NumberCell(1e-300), kTrue},
                {NumberCell(-2), kTrue},  {BooleanCell(true), kTrue}, {BooleanCell(false), kFalse},
                {IntegerCell(0), kFalse}, {IntegerCell(7), kTrue},    {EmptyCell(), kNone},
                {MissingCell(), kNone},   {ErrorCell(xlerrNA), kNone}};
  XLOPER12 dirty = NumberCell(-7.5);  // what Excel leaves behind a boolean is none of it
  dirty.val.xbool = 0;
  dirty.xltype = xltypeBool | xlbitXLFree;
  EXPECT_EQ(TruthOf(dirty), kFalse);
  for (const auto& [cell, truth] : values) EXPECT_EQ(TruthOf(cell), truth) << TypeOf(cell);

  const struct {
    XStringView text;
    TruthValue truth;
  } texts[] = {{XTEXT("true"), kTrue}, {XTEXT("False"), kFalse},   {XTEXT("TRUE "), kNone}, {XTEXT("yes"), kNone},
               {XTEXT("-3.5"), kTrue}, {XTEXT(" 1e2 "), kTrue},    {XTEXT("0"), kFalse},    {XTEXT("0.00"), kFalse},
               {XTEXT("1,5"), kNone},  {XTEXT("1/2/2020"), kNone}, {XTEXT("12%"), kNone},   {XTEXT(""), kNone},
               {XTEXT(" \t"), kNone}};
  for (const auto& [text, truth] : texts)
    EXPECT_EQ(TruthOf(CXlOper::Text(text).Raw()), truth) << std::string(text.begin(), text.end());
  EXPECT_THROW(TruthOf(CXlOper::Reference(XLREF12{0, 0, 0, 0}).Raw()), CXlRuntimeException);
}

}  // namespace
}  // namespace quillmere::testing
