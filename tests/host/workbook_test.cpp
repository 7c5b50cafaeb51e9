// Books, sheets and the store of cells.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <stdexcept>
#include <string>

#include "host/values/value_order.h"
#include "host/workbook/workbooks.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class WorkbookTest : public ModelTest {
 protected:
  std::string Used() {
    const auto used = sheet.UsedArea();
    return used ? AreaToText(*used) : "nothing";
  }
};

TEST_F(WorkbookTest, FindsSheetsByNameAndId) {
  Book& book = workbooks.BookNamed(XTEXT("BOOK1"));
  Sheet& data = book.SheetNamed(XTEXT("Data"));
  EXPECT_EQ(&book, &sheet.ItsBook());
  EXPECT_EQ(&book.SheetNamed(XTEXT("dATA")), &data);
  EXPECT_EQ(workbooks.FindSheet(data.Id()), &data);
  EXPECT_EQ(workbooks.FindSheet(IDSHEET{0}), nullptr);
  Sheet& other = workbooks.BookNamed(XTEXT("Book2")).SheetNamed(XTEXT("Data"));
  EXPECT_EQ(workbooks.FindSheet({}, XTEXT("data"), &other), &other);
  EXPECT_EQ(workbooks.FindSheet(XTEXT("book1"), XTEXT("data"), &other), &data);
  EXPECT_EQ(workbooks.FindSheet(XTEXT("Book3"), XTEXT("Data"), &other), nullptr);
  EXPECT_EQ(ToUtf8(other.FullName()), "[Book2]Data");
}

TEST_F(WorkbookTest, SetFillsAndClears) {
  Follow("B2 -> {1,\"x\";empty,TRUE}",
         "A1:D4 -> {empty,empty,empty,empty;empty,1,\"x\",empty;empty,empty,TRUE,empty;empty,empty,empty,empty}");
  Follow("A1:A3 -> \"y\"", "A1:B3 -> {\"y\",empty;\"y\",1;\"y\",empty}");
  Follow("A2:B2 -> empty", "A1:C3 -> {\"y\",empty,empty;empty,empty,\"x\";\"y\",empty,TRUE}");
  Follow("A1 -> \"\" | Z2 -> {5}", "A1 -> \"\" | Z2 -> 5");
  EXPECT_THROW(sheet.Set(AreaOf("XFD1048576"), *ParseLiteral("{1,2}")), std::length_error);
  for (const std::string tooLarge : {"A:XFD", "A1:BM1048576"})
    EXPECT_THROW(sheet.WriteResult(AreaOf(tooLarge), Value::Number(1)), std::length_error) << tooLarge;
  EXPECT_THROW(SetFormula("A:E", "=1"), std::length_error);
  EXPECT_THROW(ArrayBuilder(0, 1), std::length_error);
}

TEST_F(WorkbookTest, UsedAreaFollowsEveryWrite) {
  EXPECT_EQ(Used(), "nothing");
  for (const auto& [write, used] : CasesOf(R"(
      C1030 = 1 -> C1030 | XFD1048576 = "" -> C1030:XFD1048576 | XFD1048576 = empty -> C1030
      A2000 = TRUE -> A1030:C2000 | C:C = empty -> A2000)")) {
    Set(write.substr(0, write.find(' ')), write.substr(write.rfind(' ')));
    EXPECT_EQ(Used(), used) << write;
  }
  SetFormula("B5", "=1+1");
  EXPECT_EQ(Used(), "A5:B2000");
  sheet.Clear({0, kXlMaxRows - 1, 0, kXlMaxColumns - 1});
  EXPECT_EQ(Used(), "nothing");
}

// Random writes against a plain map, over the border of chunks, with texts enough to make the store tidy up.
TEST_F(WorkbookTest, StoreHoldsWhatWasWritten) {
  std::mt19937 random(4);
  std::map<CellPosition, Value> model;
  for (int i = 0; i < 20'000; ++i) {
    const CellPosition at{static_cast<std::int32_t>(random() % 8 + 1020), static_cast<std::int32_t>(random() % 3)};
    const auto kind = random() % 4;
    const Value value = kind == 0   ? Value::Number(i)
                        : kind == 1 ? Value()
                                    : Value::Text(XString(random() % 500, static_cast<XCHAR>('a' + i % 26)));
    sheet.Set({at.row, at.row, at.column, at.column}, value);
    model[at] = value;
  }
  // An array read before further writes keeps what it read.
  const Area area{1020, 1027, 0, 2};
  const ArrayPtr before = sheet.ReadArray(area);
  for (int i = 0; i < 200; ++i) sheet.Set(area, Value::Text(XString(30'000, static_cast<XCHAR>('a' + i % 26))));
  for (const auto& [at, value] : model)
    ASSERT_TRUE(SameContent(before->At(at.row - area.firstRow, at.column), value.AsCell())) << at.row;
  EXPECT_EQ(sheet.Get(1027, 2).AsText(), XString(30'000, XTEXT('r')));
}

TEST_F(WorkbookTest, ResultsFillCallingCells) {
  for (const auto& [write, held] : CasesOf(R"(
      A1:C2 {1,2;3,4} -> {1,2,#N/A;3,4,#N/A} | A1:B3 {1,empty} -> {1,0;1,0;1,0} | A1:B2 "t" -> {"t","t";"t","t"}
      A1 {7,8} -> 7 | A1 empty -> 0)")) {
    const std::string cells = write.substr(0, write.find(' '));
    sheet.WriteResult(AreaOf(cells), *ParseLiteral(write.substr(cells.size() + 1)));
    EXPECT_EQ(Held(cells), held) << write;
  }
}

}  // namespace
}  // namespace qcalc
