#include "frame/values/xl_oper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "frame/values/array_builder.h"
#include "frame/values/value_memory.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace quillmere {
namespace {

XLOPER12 OfType(std::uint32_t type) { return {.val = {}, .xltype = type}; }

XLOPER12 TextValue(XCHAR* counted) { return {.val = {.str = counted}, .xltype = xltypeStr}; }

XLOPER12 ArrayValue(XLOPER12* cells, int rows, int columns) {
  return {.val = {.array = {cells, rows, columns}}, .xltype = xltypeMulti};
}

XLOPER12 AreasValue(XLMREF12* areas) { return {.val = {.mref = {areas, 0}}, .xltype = xltypeRef}; }

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
  XLOPER12 twoAreas = OfType(xltypeSRef);
  twoAreas.val.sref.count = 2;
  const XLOPER12 bad[] = {TextValue(nullptr),
                          TextValue(tooLong),
                          ArrayValue(nullptr, 1, 1),
                          ArrayValue(&cell, 0, 1),
                          ArrayValue(&cell, 1, 0),
                          ArrayValue(&cell, -1, 1),
                          ArrayValue(&cell, 1'048'577, 1),
                          ArrayValue(&cell, 1, 16'385),
                          AreasValue(nullptr),
                          AreasValue(&noAreas),
                          AreasValue(&upsideDown),
                          AreasValue(&offSheet),
                          twoAreas};
  for (const XLOPER12& value : bad) EXPECT_THROW(CXlOper::Borrow(&value), CXlBadOperTypeException) << value.xltype;
  for (const std::uint32_t type :
       std::initializer_list<std::uint32_t>{xltypeBigData, xltypeFlow, 0, 0x200, xltypeNum | 0x200, xltypeNil | 0x2000,
                                            xltypeNum | xltypeBool, 0x40000000}) {
    const XLOPER12 value = OfType(type);
    EXPECT_THROW(CXlOper::Borrow(&value), CXlBadOperTypeException) << type;
  }
}

TEST(XlOper, BorrowsWithoutTakingOver) {
  EXPECT_FALSE(CXlOper::Borrow(nullptr).IsSet());
  XCHAR text[] = {2, XTEXT('h'), XTEXT('i')};
  const XLOPER12 value = TextValue(text);
  XLOPER12 slot{};
  {
    CXlOper oper = CXlOper::Borrow(&value);
    EXPECT_EQ(oper.AsText().data(), text + 1);
    oper.ReturnInto(slot);
  }
  EXPECT_EQ(slot.xltype, xltypeStr);
  EXPECT_EQ(slot.val.str, text);
  const XLOPER12 marked = OfType(xltypeNil | xlbitDLLFree | xlbitXLFree);
  EXPECT_TRUE(CXlOper::Borrow(&marked).IsEmpty());
}

TEST(XlOper, GivesExcelsValuesBackOnce) {
  testing::FakeExcel excel;
  {
    CXlOper value = CXlOper::TakeFromExcel(excel.LendText(XTEXT("lent")));
    CXlOper& same = value;
    value = std::move(same);
    EXPECT_EQ(value.AsText(), XTEXT("lent"));
    value = CXlOper::TakeFromExcel(excel.LendArray(1, 1, {NumberCell(3)}));
    EXPECT_EQ(excel.Lent(), 1u);
  }
  CXlOper::TakeFromExcel(NumberCell(1));
  EXPECT_EQ(excel.Calls(xlFree), 2);
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

  testing::FakeExcel excel;
  CXlOper::TakeFromExcel(excel.LendText(XTEXT("Excel's"))).ReturnInto(slot);
  EXPECT_EQ(slot.xltype, xltypeStr | xlbitXLFree);
  ReleaseOwned(slot);
  EXPECT_EQ(excel.Lent(), 1u);
  CXlOper::TakeFromExcel(slot);
}

TEST(XlOper, ReturnsOnlyWhatExcelTakes) {
  XLOPER12 slot{};
  CXlOper().ReturnInto(slot);
  EXPECT_EQ(slot.xltype, xltypeErr);
  EXPECT_EQ(slot.val.err, xlerrValue);
  XLOPER12 infinite = NumberCell(0);
  infinite.val.num = std::numeric_limits<double>::infinity();
  CXlOper numbers[] = {CXlOper::Borrow(&infinite), CXlOper::Number(std::nan(""))};
  for (CXlOper& oper : numbers) {
    oper.ReturnInto(slot);
    EXPECT_EQ(slot.xltype, xltypeErr);
    EXPECT_EQ(slot.val.err, xlerrNum);
  }
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
  EXPECT_THROW(CXlOper::FromCell(OfType(xltypeFlow)), CXlBadOperTypeException);
  EXPECT_THROW(CXlOper::BorrowCell(TextValue(nullptr)), CXlBadOperTypeException);
  EXPECT_EQ(CXlOper::FromCell(CXlOper::Text(XTEXT("a")).Raw()).AsText(), XTEXT("a"));
}

}  // namespace
}  // namespace quillmere
