#include "frame/values/xl_oper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "frame/values/array_builder.h"
#include "frame/values/value_memory.h"
#include "tests/unit/fixtures/fake_excel.h"
#include "tests/unit/fixtures/raw_values.h"

namespace quillmere::testing {
namespace {

XLOPER12 RawAreas(XLMREF12* areas) { return {.val = {.mref = {areas, 0}}, .xltype = xltypeRef}; }

CXlOper SmallArray() {
  CXlArrayBuilder builder(1, 3);
  builder.PutNumber(0, 0, 1.5);
  builder.PutText(0, 1, XTEXT("abc"));
  builder.PutEmpty(0, 2);
  return builder.Finish();
}

TEST(XlOper, RefusesWhatIsMalformedWhereItEnters) {
  XCHAR tooLong[] = {32'768};
  XLOPER12 cell = NumberCell(1);
  XLMREF12 noAreas{0, {}};
  XLMREF12 upsideDown{1, {{5, 4, 0, 0}}};
  XLMREF12 offSheet{1, {{0, 1'048'576, 0, 0}}};
  XLOPER12 sRefOfTwoAreas = RawValue(xltypeSRef);
  sRefOfTwoAreas.val.sref.count = 2;
  std::vector<XLOPER12> bad = {RawText(nullptr),   RawArray(&cell, 0, 1),  RawArray(&cell, 1'048'577, 1),
                               RawText(tooLong),   RawArray(&cell, 1, 0),  RawArray(&cell, 1, 16'385),
                               RawAreas(nullptr),  RawArray(&cell, -1, 1), RawArray(nullptr, 1, 1),
                               RawAreas(&noAreas), RawAreas(&offSheet),    RawAreas(&upsideDown),
                               sRefOfTwoAreas};
  const std::uint32_t types[] = {xltypeBigData,          xltypeFlow, 0, 0x200, xltypeNum | 0x200, xltypeNil | 0x2000,
                                 xltypeNum | xltypeBool, 0x40000000};
  for (const std::uint32_t type : types) bad.push_back(RawValue(type));
  for (const XLOPER12& value : bad) EXPECT_THROW(CXlOper::Borrow(&value), CXlBadOperTypeException) << value.xltype;
}

TEST(XlOper, BorrowsWithoutTakingOver) {
  EXPECT_FALSE(CXlOper::Borrow(nullptr).IsSet());
  XCHAR text[] = {2, XTEXT('h'), XTEXT('i')};
  const XLOPER12 value = RawText(text);
  XLOPER12 slot{};
  CXlOper oper = CXlOper::Borrow(&value);
  EXPECT_EQ(oper.AsText().data(), text + 1);
  oper.ReturnInto(slot);
  EXPECT_EQ(slot.xltype, xltypeStr);
  EXPECT_EQ(slot.val.str, text);
  const XLOPER12 marked = RawValue(xltypeNil | xlbitDLLFree | xlbitXLFree);
  EXPECT_TRUE(CXlOper::Borrow(&marked).IsEmpty());
}

TEST(XlOper, KeepsWhatIsAssignedToItselfAndGivesBackWhatIsMalformed) {
  FakeExcel excel;
  CXlOper value = CXlOper::TakeFromExcel(excel.LendText(XTEXT("lent")));
  CXlOper& same = value;
  value = std::move(same);
  EXPECT_EQ(value.AsText(), XTEXT("lent"));
  value.Reset();
  XLOPER12 malformed = excel.LendArray(1, 1, {NumberCell(3)});
  malformed.val.array.rows = 0;
  EXPECT_THROW(CXlOper::TakeFromExcel(malformed), CXlBadOperTypeException);
}

// Leaks and double frees show under the sanitizers.
TEST(XlOper, HandsOwnershipToTheReturnSlot) {
  const XLREF12 areas[] = {{1, 2, 3, 4}, {5, 5, 6, 6}};
  CXlOper owners[] = {SmallArray(), CXlOper::Text(XTEXT("ours")), CXlOper::Reference(7, areas)};
  XLOPER12 slot{};
  for (CXlOper& oper : owners) {
    oper.ReturnInto(slot);
    EXPECT_FALSE(oper.IsSet());
    EXPECT_EQ(slot.xltype & kOwnershipBits, xlbitDLLFree);
    ReleaseOwned(slot);
    EXPECT_EQ(slot.xltype, xltypeNil);
    ReleaseOwned(slot);
  }

  FakeExcel excel;
  CXlOper::TakeFromExcel(excel.LendText(XTEXT("Excel's"))).ReturnInto(slot);
  EXPECT_EQ(slot.xltype, xltypeStr | xlbitXLFree);
  ReleaseOwned(slot);
  EXPECT_EQ(excel.Lent(), 1u);
  CXlOper::TakeFromExcel(slot);
}

TEST(XlOper, ReturnsOnlyWhatExcelTakes) {
  const auto returned = [](CXlOper value) {
    XLOPER12 slot{};
    value.ReturnInto(slot);
    return slot.xltype == xltypeErr ? slot.val.err : -1;
  };
  const XLOPER12 infinite = RawNumber(std::numeric_limits<double>::infinity());
  EXPECT_EQ(returned(CXlOper()), xlerrValue);
  EXPECT_EQ(returned(CXlOper::Borrow(&infinite)), xlerrNum);
  EXPECT_EQ(returned(CXlOper::Number(std::nan(""))), xlerrNum);
  XLOPER12 slot{};
  CXlOper::Empty().ReturnInto(slot);
  EXPECT_EQ(slot.xltype, xltypeNil);
}

TEST(XlOper, RefusesTheWrongReader) {
  EXPECT_THROW(CXlOper().AsNumber(), CXlUninitializedOperException);
  EXPECT_THROW(CXlOper().Cells(), CXlUninitializedOperException);
  EXPECT_THROW(CXlOper::Number(1).AsText(), CXlBadOperTypeException);
  EXPECT_THROW(CXlOper::Text(XTEXT("1")).AsNumber(), CXlBadOperTypeException);
  EXPECT_THROW(CXlOper::Reference(XLREF12{0, 0, 0, 0}).Cells(), CXlBadOperTypeException);
  EXPECT_THROW(CXlOper::Reference(3, {}).Areas(), CXlBadOperTypeException);
  EXPECT_EQ(CXlOper::Integer(-4).AsNumber(), -4);
  const CXlOper array = SmallArray();
  EXPECT_EQ(CellText(array.CellAt(0, 1)), XTEXT("abc"));
  for (const auto& [row, column] : {std::pair(1, 0), {-1, 0}, {0, 3}, {0, -1}})
    EXPECT_THROW(array.CellAt(row, column), CXlOutOfRangeException) << row << ", " << column;
  EXPECT_EQ(CXlOper::Number(2).CellAt(0, 0).val.num, 2);
  EXPECT_EQ(CXlOper::Text(XString(32'767, XTEXT('x'))).AsText().size(), 32'767u);
  EXPECT_THROW(CXlOper::Text(XString(32'768, XTEXT('x'))), CXlStringTooLongException);
}

TEST(XlOper, ClonesAllItPointsTo) {
  CXlOper array = SmallArray();
  XCHAR* const source = array.Cells().At(0, 1).val.str;
  const CXlOper copy = array.Clone();
  source[1] = XTEXT('X');
  array.Reset();
  EXPECT_EQ(CellText(copy.CellAt(0, 1)), XTEXT("abc"));
  EXPECT_TRUE(IsEmptyCell(copy.CellAt(0, 2)));

  const XLREF12 areas[] = {{1, 2, 3, 4}, {5, 5, 6, 6}};
  CXlOper reference = CXlOper::Reference(7, areas);
  const CXlOper referenceCopy = reference.Clone();
  reference.Reset();
  EXPECT_EQ(referenceCopy.Sheet(), 7u);
  EXPECT_EQ(referenceCopy.Areas()[1].rwFirst, 5);
  EXPECT_FALSE(CXlOper().Clone().IsSet());
}

TEST(XlOper, TakesOneCellOnly) {
  EXPECT_THROW(CXlOper::FromCell(SmallArray().Raw()), CXlIllegalArgumentException);
  EXPECT_THROW(CXlOper::FromCell(CXlOper::Reference(XLREF12{0, 0, 0, 0}).Raw()), CXlIllegalArgumentException);
  EXPECT_THROW(CXlOper::FromCell(RawValue(xltypeFlow)), CXlBadOperTypeException);
  EXPECT_THROW(CXlOper::BorrowCell(RawText(nullptr)), CXlBadOperTypeException);
  EXPECT_EQ(CXlOper::FromCell(CXlOper::Text(XTEXT("a")).Raw()).AsText(), XTEXT("a"));
}

}  // namespace
}  // namespace quillmere::testing
