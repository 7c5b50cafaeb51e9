#include "lookup/lookup_memory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

#include "exports.h"
#include "frame/values/kept_blocks.h"
#include "tests/unit/fixtures/failing_memory.h"
#include "tests/unit/fixtures/fake_excel.h"
#include "tests/unit/fixtures/raw_values.h"
#include "workbook/id_stores.h"

namespace quillmere::testing {

using namespace lookup;
using namespace workbook;
namespace {

constexpr ListDirection kDirections[] = {ListDirection::kDown, ListDirection::kAcross};

/// An Excel whose formulas stand in `caller`, on a sheet of that name; the store begins and ends empty.
class LookupMemoryTest : public ::testing::Test {
 protected:
  LookupMemoryTest() {
    EXPECT_TRUE(ClearTextStore());
    excel.Give(xlfCaller, [this] { return CXlOper::Reference(caller).Raw(); });
    excel.Give(xlSheetNm, [this] { return excel.LendText(sheet); });
  }
  ~LookupMemoryTest() override { EXPECT_TRUE(ClearTextStore()); }

  FakeExcel excel;
  XLREF12 caller{4, 4, 2, 2};
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
  const XString sheets[] = {XTEXT("[Book]Sheet"), XTEXT("[Book]SheetR5"), XTEXT("[Book]Sheet!R5"), XTEXT("[B]!C3"),
                            XTEXT("[]"),          XTEXT("[B]R5!1!x[B]"),  XTEXT("R5!1!x[B]"),      XTEXT("[x[B]S")};
  const XString names[] = {XTEXT("x"),   XTEXT("x[Book]"), XTEXT("x[B]"),           XTEXT("x[x"),      XTEXT("!"),
                           XTEXT("1!x"), XTEXT("X"),       XTEXT("[Book]Sheet!R5"), XTEXT("x[B]R5!1!")};
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
            caller = cell;
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

TEST_F(LookupMemoryTest, NoMemoryForAnEntryEndsNothingButItsUse) {
  LookupMemory memory({MemoryType::kNumber, {}});
  memory.RequireCallingCells();
  ReleaseKeptBlocks();
  FailNextAllocation();
  EXPECT_NO_THROW(memory.Remember(0, 7));
  EXPECT_FALSE(memory.IsInUse());
}

TEST_F(LookupMemoryTest, NoAnswerOfMatchLeadsOutOfTheList) {
  XLOPER12 cells[] = {NumberCell(1), NumberCell(2)}, array = RawArray(cells, 2, 1);
  XLOPER12 noMemory = NumberCell(0), one = cells[0], two = cells[1];
  const CXlOper rows = CXlOper::Reference({0, 1, 0, 0});
  for (const double answer : {0.0, -1.0, 0.5, 3.0, 1e300, std::nan("")})
    for (const double sorted : {0.0, 1.0}) {
      excel.Give(xlfMatch, [answer] { return RawNumber(answer); });
      XLOPER12 order = NumberCell(sorted);
      const XLOPER12 results[] = {*MEMLOOKUP_12(&two, &array, &one, &order, nullptr, nullptr),
                                  *AMATCH2_12(&two, rows.ForCallback(), &order, nullptr, nullptr, &noMemory),
                                  *MEMMATCH_12(&two, &array, &order, nullptr, nullptr)};
      for (const XLOPER12& result : results) {
        const bool isTaken = &result == &results[2] && answer == 3 && sorted == 0;
        EXPECT_TRUE(isTaken ? IsNumberCell(result) : IsErrorCell(result) && result.val.err == xlerrNA) << answer;
      }
    }
}

}  // namespace
}  // namespace quillmere::testing
