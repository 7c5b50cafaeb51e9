#include "lookup/lookup_memory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

#include "exports.h"
#include "frame/callbacks/callbacks.h"
#include "frame/values/kept_blocks.h"
#include "tests/unit/fixtures/failing_memory.h"
#include "tests/unit/fixtures/fake_excel.h"
#include "workbook/id_stores.h"

namespace quillmere::testing {

using namespace lookup;
using namespace workbook;
namespace {

constexpr ListDirection kDirections[] = {ListDirection::kDown, ListDirection::kAcross};

/// An Excel whose formulas stand in `caller`, on a sheet of that name; the stores begin and end empty.
class LookupMemoryTest : public ::testing::Test {
 protected:
  LookupMemoryTest() {
    Clear();
    excel.On(xlfCaller, [this](auto, XLOPER12& result) {
      const bool hasAreas = caller.Type() == xltypeRef && caller.Raw().val.mref.lpmref != nullptr;
      result = hasAreas ? excel.LendReference(caller.Sheet(), caller.Areas()) : caller.Raw();
      return xlretSuccess;
    });
    excel.On(xlSheetNm, [this](auto arguments, XLOPER12& result) {
      EXPECT_EQ(arguments.size(), 1u);
      EXPECT_EQ(TypeOf(*arguments[0]), caller.Type());
      result = excel.LendText(sheet);
      return xlretSuccess;
    });
  }
  ~LookupMemoryTest() override { Clear(); }

  static void Clear() {
    ASSERT_TRUE(ClearTextStore());
    ASSERT_TRUE(ClearNumberStore(NumberStore::kRowIds));
    ASSERT_TRUE(ClearNumberStore(NumberStore::kColumnIds));
  }
  static std::uint32_t Stored() {
    return TextStoreCount() + NumberStoreCount(NumberStore::kRowIds) + NumberStoreCount(NumberStore::kColumnIds);
  }

  FakeExcel excel;
  CXlOper caller = CXlOper::Reference({4, 4, 2, 2});
  XString sheet = XTEXT("[Book1]Sheet1");
};

/// What identifies a place, by its parts and not by a text.
using Place = std::tuple<int, ListDirection, XString, XString, int, int>;

Place PlaceOf(const MemoryChoice& choice, ListDirection direction, const XString& sheet, const XLREF12& cell) {
  const bool isDown = direction == ListDirection::kDown;
  const int line = isDown ? cell.rwFirst : cell.colFirst;
  switch (choice.type) {
    case MemoryType::kCell:
      return {1, ListDirection::kDown, sheet, {}, cell.rwFirst, cell.colFirst};
    case MemoryType::kNamed:
      return {4, direction, sheet.substr(0, sheet.rfind(XTEXT(']')) + 1), choice.name, line, 0};
    default:
      return {2, direction, sheet, {}, line, 0};
  }
}

TEST_F(LookupMemoryTest, PlacesShareAKeyOnlyIfTheyAreTheSame) {
  const XString sheets[] = {
      XTEXT("[Book]Sheet"), XTEXT("[Book]Other"),  XTEXT("[Book]Sheet!R5"), XTEXT("[Book]Sheet!R5C3"),
      XTEXT("[B]!C3"),      XTEXT("[B]R5!1!x[B]"), XTEXT("[x[B]S"),         XTEXT("R5!1!x[B]"),
      XTEXT("[]"),          XTEXT("[!1!x[B]"),     XTEXT("5!x[Book]"),      XTEXT("[B][B]S"),
      XTEXT("[R5]R5")};
  const XString names[] = {XTEXT("x"),         XTEXT("x[Book]"),   XTEXT("x["),
                           XTEXT("x[B]"),      XTEXT("x[x"),       XTEXT("!"),
                           XTEXT("1!x"),       XTEXT("R5!1!x"),    XTEXT("[Book]Sheet!R5"),
                           XTEXT("[B]"),       XTEXT("x[B]R5!1!"), XTEXT("5!x"),
                           XTEXT("\u00E9[B]"), XTEXT("X")};
  const XLREF12 cells[] = {{4, 4, 2, 2}, {4, 4, 22, 22}, {54, 54, 2, 2},
                           {2, 2, 4, 4}, {0, 0, 0, 0},   {1'048'575, 1'048'575, 16'383, 16'383}};
  std::vector<MemoryChoice> choices = {{MemoryType::kCell, {}}, {MemoryType::kRowColumn, {}}};
  for (const XString& name : names) choices.push_back({MemoryType::kNamed, name});

  std::map<Place, std::int32_t> expected;
  const auto forEach = [&](const auto& work) {
    for (const XString& onSheet : sheets)
      for (const XLREF12& cell : cells)
        for (const MemoryChoice& choice : choices)
          for (const ListDirection direction : kDirections) {
            sheet = onSheet;
            caller = CXlOper::Reference(cell);
            work(LookupMemory(choice, direction), PlaceOf(choice, direction, onSheet, cell));
          }
  };
  forEach([&](LookupMemory memory, const Place& place) {
    const auto number = static_cast<std::int32_t>(expected.size()) + 1;
    const bool isNew = expected.try_emplace(place, number).second;
    EXPECT_EQ(memory.Recall(0).has_value(), !isNew);
    memory.Remember(0, number);
    expected[place] = number;
  });
  EXPECT_EQ(TextStoreCount(), expected.size());
  forEach([&](LookupMemory memory, const Place& place) { EXPECT_EQ(memory.Recall(0), expected[place]); });
}

TEST_F(LookupMemoryTest, KeyRowsHaveTheLinesOfTheCallingRange) {
  const XLREF12 area{9, 11, 2, 5};
  for (const bool hasSheet : {false, true})
    for (const ListDirection direction : kDirections)
      for (const MemoryType type : {MemoryType::kCell, MemoryType::kNumber, MemoryType::kNamed}) {
        Clear();
        caller = hasSheet ? CXlOper::Reference(77, {&area, 1}) : CXlOper::Reference(area);
        const bool isDown = direction == ListDirection::kDown;
        const std::int32_t lines = isDown ? 3 : 4;
        LookupMemory memory({type, XTEXT("n")}, direction);
        for (std::int32_t keyRow = 0; keyRow < lines + 2; ++keyRow) memory.Remember(keyRow, 100 + keyRow);
        EXPECT_EQ(Stored(), static_cast<std::uint32_t>(lines));
        EXPECT_EQ(memory.Recall(lines), std::nullopt);
        for (std::int32_t keyRow = 0; keyRow < lines; ++keyRow) {
          EXPECT_EQ(memory.Recall(keyRow), 100 + keyRow);
          // A formula in the range's like line alone has the same memory.
          const int row = 9 + (isDown ? keyRow : 0), column = 2 + (isDown ? 0 : keyRow);
          caller = CXlOper::Reference({row, row, column, column});
          EXPECT_EQ(LookupMemory({type, XTEXT("n")}, direction).Recall(0), 100 + keyRow);
        }
      }
  // All key rows of a single line share its memory, under a key that can be read.
  caller = CXlOper::Reference({9, 9, 2, 5});
  LookupMemory memory({MemoryType::kRowColumn, {}});
  memory.Remember(3, 55);
  EXPECT_EQ(memory.Recall(1000), 55);
  EXPECT_EQ(FindRowId(XTEXT("[Book1]Sheet1!R10")), 55);
}

TEST_F(LookupMemoryTest, WithoutAPlaceNothingIsRemembered) {
  const XLREF12 areas[] = {{1, 1, 1, 1}, {3, 3, 1, 1}};
  const CXlOper callers[] = {CXlOper::Number(-4), CXlOper::Error(xlerrRef), CXlOper::Reference(77, {}),
                             CXlOper::Reference(77, areas)};
  for (const CXlOper& one : callers) {
    caller = one.Clone();
    LookupMemory memory({MemoryType::kNumber, {}});
    EXPECT_THROW(memory.RequireCallingCells(), CXlErrorException);
    memory.Remember(0, 1);
    EXPECT_EQ(memory.Recall(0), std::nullopt);
  }

  caller = CXlOper::Reference({4, 4, 2, 2});
  sheet = XTEXT("Macro1");  // names no book
  LookupMemory({MemoryType::kNamed, XTEXT("n")}).Remember(0, 1);
  sheet = XTEXT("[Book1]Sheet1");
  LookupMemory({MemoryType::kNamed, XString(32'755, XTEXT('n'))}).Remember(0, 1);  // a key that no cell could show
  EXPECT_EQ(Stored(), 0u);
  LookupMemory({MemoryType::kNamed, XString(32'750, XTEXT('n'))}).Remember(0, 1);
  EXPECT_EQ(Stored(), 1u);
}

TEST_F(LookupMemoryTest, NoMemoryForAnEntryEndsNothingButItsUse) {
  LookupMemory memory({MemoryType::kNumber, {}});
  memory.RequireCallingCells();
  ReleaseKeptBlocks();
  FailNextAllocation();
  EXPECT_NO_THROW(memory.Remember(0, 7));
  EXPECT_FALSE(memory.IsInUse());
}

TEST_F(LookupMemoryTest, NoAnswerOfMatchLeadsOutOfTheList) {
  XLOPER12 cells[] = {NumberCell(1), NumberCell(2)};
  XLOPER12 array{};
  array.xltype = xltypeMulti;
  array.val.array.lparray = cells;
  array.val.array.rows = 2;
  array.val.array.columns = 1;
  const CXlOper two = CXlOper::Number(2);
  const CXlOper one = CXlOper::Number(1);
  const CXlOper noMemory = CXlOper::Number(0);
  const CXlOper rows = CXlOper::Reference({0, 1, 0, 0});
  for (const double answer : {0.0, -1.0, 0.5, 3.0, 1e300, std::nan("")})
    for (const double sorted : {0.0, 1.0}) {
      excel.On(xlfMatch, [answer](auto, XLOPER12& result) {
        result.xltype = xltypeNum;
        result.val.num = answer;
        return xlretSuccess;
      });
      const CXlOper sortType = CXlOper::Number(sorted);
      const XLOPER12* result =
          MEMLOOKUP_12(two.ForCallback(), &array, one.ForCallback(), sortType.ForCallback(), nullptr, nullptr);
      EXPECT_TRUE(IsErrorCell(*result) && result->val.err == xlerrNA) << answer;
      result = MEMMATCH_12(two.ForCallback(), &array, sortType.ForCallback(), nullptr, nullptr);
      const bool isTaken = answer == 3 && sorted == 0;
      EXPECT_TRUE(isTaken ? IsNumberCell(*result) : IsErrorCell(*result) && result->val.err == xlerrNA) << answer;
      result = AMATCH2_12(two.ForCallback(), rows.ForCallback(), sortType.ForCallback(), nullptr, nullptr,
                          noMemory.ForCallback());
      EXPECT_TRUE(IsErrorCell(*result) && result->val.err == xlerrNA) << answer;
    }
}

}  // namespace
}  // namespace quillmere::testing
