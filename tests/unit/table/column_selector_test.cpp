// Choosing columns by number or label, and the view of a table that is a reference.
#include "table/column_selector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

#include "frame/errors/exceptions.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;

/// An array with its texts.
class Cells {
 public:
  Cells(int rows, std::vector<CXlOper> values) : values_(std::move(values)) {
    for (const CXlOper& value : values_) cells_.push_back(value.Raw());
    value_.val.array.lparray = cells_.data();
    value_.val.array.rows = rows;
    value_.val.array.columns = static_cast<COL>(cells_.size()) / rows;
    value_.xltype = xltypeMulti;
  }
  CXlOper Oper() const { return CXlOper::Borrow(&value_); }
  CXlCells View() const { return Oper().Cells(); }

 private:
  std::vector<CXlOper> values_;
  std::vector<XLOPER12> cells_;
  XLOPER12 value_{};
};

template <class... Values>
Cells Row(Values... values) {
  std::vector<CXlOper> cells;
  const auto add = [&cells](auto value) {
    if constexpr (std::is_same_v<decltype(value), CXlOper>)
      cells.push_back(std::move(value));
    else if constexpr (std::is_arithmetic_v<decltype(value)>)
      cells.push_back(CXlOper::Number(value));
    else
      cells.push_back(CXlOper::Text(value));
  };
  (add(std::move(values)), ...);
  return Cells(1, std::move(cells));
}

TEST(SelectColumns, FindsLabelsOfAnArrayByTheirFoldedText) {
  const Cells table = Row(XTEXT("Name"), 7, XTEXT(""), XTEXT("Price"), XTEXT("PRICE"), XTEXT("\u00C9"));
  const CXlOper oper = table.Oper();
  const TableView view(oper);
  const SelectedColumns found = SelectColumns(Row(2, XTEXT("pRICE"), 2.9, XTEXT(""), 6).View(), view);
  EXPECT_THAT(found.columns, ElementsAre(2, 4, 2, 3, 6));
  EXPECT_TRUE(found.headerUsed);
  EXPECT_FALSE(found.failed);
  EXPECT_FALSE(SelectColumns(Row(1, CXlOper::Integer(6)).View(), view).headerUsed);
  for (const XStringView label : {XTEXT("Pr*"), XTEXT("Pric"), XTEXT("7"), XTEXT("\u00E9")})
    EXPECT_TRUE(SelectColumns(Row(label).View(), view).failed);
}

TEST(SelectColumns, FindsTheSameLabelsWhenThereAreMany) {
  std::vector<CXlOper> labels;
  for (int label = 0; label < 3000; ++label) {
    const std::string digits = std::to_string(label % 2000);
    labels.push_back(CXlOper::Text(XTEXT("Label ") + XString(digits.begin(), digits.end())));
  }
  const Cells table(1, std::move(labels));
  const CXlOper oper = table.Oper();
  const SelectedColumns found = SelectColumns(table.View(), TableView(oper));
  ASSERT_EQ(found.columns.size(), 3000u);
  for (int label = 0; label < 3000; ++label) EXPECT_EQ(found.columns[label], label % 2000 + 1);
}

TEST(SelectColumns, FailsForWhatIsNoColumn) {
  const Cells table = Row(1, 2, 3);
  const CXlOper oper = table.Oper();
  const TableView view(oper);
  for (const double number : {0.0, 0.9, -1.0, 4.0, 1e300}) EXPECT_TRUE(SelectColumns(Row(number).View(), view).failed);
  std::vector<CXlOper> others;
  others.push_back(CXlOper::Boolean(true));
  others.push_back(CXlOper::Error(xlerrNA));
  others.push_back(CXlOper::Empty());
  others.push_back(CXlOper::Missing());
  for (CXlOper& other : others) {
    const SelectedColumns found = SelectColumns(Row(3, std::move(other), 2, XTEXT("x")).View(), view);
    EXPECT_TRUE(found.failed);
    EXPECT_TRUE(found.headerUsed);
    EXPECT_THAT(found.columns, ElementsAre(3));
  }
}

TEST(SelectRows, LooksThroughTheFirstColumn) {
  std::vector<CXlOper> values;
  for (const XStringView text : {XTEXT("a"), XTEXT("x"), XTEXT("x"), XTEXT("b"), XTEXT("B"), XTEXT("y")})
    values.push_back(CXlOper::Text(text));
  const Cells table(3, std::move(values));
  const CXlOper oper = table.Oper();
  EXPECT_THAT(SelectRows(Row(XTEXT("X"), 3).View(), TableView(oper)).columns, ElementsAre(2, 3));
  EXPECT_TRUE(SelectRows(Row(XTEXT("y")).View(), TableView(oper)).failed);
  EXPECT_TRUE(SelectRows(Row(4).View(), TableView(oper)).failed);
}

TEST(SelectColumns, AsksExcelForLabelsOfAReference) {
  FakeExcel excel;
  std::deque<XLOPER12> answers = {NumberCell(2), ErrorCell(xlerrNA), NumberCell(1), NumberCell(4)};
  excel.On(xlfMatch, [&answers](std::span<XLOPER12* const> arguments, XLOPER12& result) -> int {
    EXPECT_EQ(arguments.size(), 3u);
    EXPECT_TRUE(IsTextCell(*arguments[0]));
    const CXlOper header = CXlOper::Borrow(arguments[1]);
    EXPECT_EQ(header.Sheet(), 9u);
    EXPECT_THAT(header.Areas().front(), ::testing::FieldsAre(5, 5, 2, 4));
    EXPECT_EQ(CellNumber(*arguments[2]), 0);
    result = answers.front();
    answers.pop_front();
    return xlretSuccess;
  });
  const CXlOper table = CXlOper::Reference(9, {{XLREF12{5, 8, 2, 4}}});
  const TableView view(table);
  const SelectedColumns found = SelectColumns(Row(3, XTEXT("Pr*")).View(), view);
  EXPECT_THAT(found.columns, ElementsAre(3, 2));
  EXPECT_TRUE(found.headerUsed);
  const SelectedColumns failed = SelectColumns(Row(1, XTEXT("none"), XTEXT("read all the same"), 2).View(), view);
  EXPECT_TRUE(failed.failed);
  EXPECT_THAT(failed.columns, ElementsAre(1));
  EXPECT_TRUE(SelectColumns(Row(XTEXT("beyond the width")).View(), view).failed);
  excel.FailCall(excel.AllCalls() + 1);
  EXPECT_THROW(SelectColumns(Row(XTEXT("failing")).View(), view), CXlErrorException);
  EXPECT_TRUE(answers.empty());
}

TEST(TableView, ViewsAnArrayOrASingleValueInPlace) {
  const Cells table(2, [] {
    std::vector<CXlOper> values;
    for (const double number : {1, 2, 3, 4, 5, 6}) values.push_back(CXlOper::Number(number));
    return values;
  }());
  const CXlOper oper = table.Oper();
  const TableView rest = TableView(oper).WithoutFirstRow();
  EXPECT_EQ(rest.Rows(), 1);
  EXPECT_EQ(rest.Columns(), 3);
  EXPECT_EQ(rest.ReadCell(0, 2).AsNumber(), 6);
  EXPECT_EQ(rest.WithoutFirstRow().Rows(), 0);
  const CXlOper text = CXlOper::Text(XTEXT("alone"));
  EXPECT_EQ(TableView(text).ReadCell(0, 0).AsText().data(), text.AsText().data());
}

TEST(TableView, ReadsCellsOfAReferenceOneByOne) {
  FakeExcel excel;
  std::vector<CXlOper> asked;
  excel.On(xlCoerce, [&](std::span<XLOPER12* const> arguments, XLOPER12& result) -> int {
    EXPECT_EQ(arguments.size(), 1u);
    asked.push_back(CXlOper::Borrow(arguments[0]).Clone());
    const XLREF12 cell = asked.back().Areas().front();
    result = cell.colFirst == 0   ? excel.LendText(XTEXT("text"))
             : cell.colFirst == 1 ? excel.LendArray(1, 1, {excel.LendText(XTEXT("in an array"))})
                                  : excel.LendArray(1, 2, {NumberCell(1), NumberCell(2)});
    return xlretSuccess;
  });
  const CXlOper onSheet = CXlOper::Reference(9, {{XLREF12{10, 12, 0, 2}}});
  const CXlOper onCurrent = CXlOper::Reference(XLREF12{10, 12, 0, 2});
  for (const CXlOper* table : {&onSheet, &onCurrent}) {
    const TableView view = TableView(*table).WithoutFirstRow();
    EXPECT_EQ(view.Rows(), 2);
    EXPECT_EQ(view.ReadCell(0, 0).AsText(), XTEXT("text"));
    EXPECT_EQ(asked.back().Type(), table->Type());
    EXPECT_EQ(asked.back().Sheet(), table->Sheet());
    EXPECT_THAT(asked.back().Areas().front(), ::testing::FieldsAre(11, 11, 0, 0));
    EXPECT_EQ(view.CoerceCell(1, 1).AsText(), XTEXT("in an array"));
    EXPECT_THROW(view.CoerceCell(1, 2), CXlErrorException);
    excel.FailCall(excel.AllCalls() + 1);
    EXPECT_THROW(view.CoerceCell(0, 0), CXlErrorException);
    EXPECT_EQ(view.Part(0, 1, 2, 1).Type(), table->Type());
    EXPECT_THAT(view.Part(0, 1, 2, 1).Areas().front(), ::testing::FieldsAre(11, 12, 1, 1));
  }
}

TEST(TableView, RefusesWhatIsNoTable) {
  const XLREF12 area{1, 2, 1, 2};
  const CXlOper twoAreas = CXlOper::Reference(1, {{area, area}});
  const CXlOper backwards = CXlOper::Reference(XLREF12{2, 1, 1, 2});
  const CXlOper missing = CXlOper::Missing();
  const CXlOper unset;
  for (const CXlOper* table : {&twoAreas, &backwards, &missing, &unset})
    EXPECT_THROW(TableView{*table}, CXlErrorException);
}

}  // namespace
}  // namespace quillmere::testing
