// Header matching held against the plain scan that says what it means.
#include "table/header_index.h"

#include <gtest/gtest.h>

#include <random>

#include "frame/convert/cell_text.h"
#include "frame/text/upper_case.h"

namespace quillmere::testing {
namespace {

/// Headers that meet each other in every way: by letter case, by text form, by value, by type alone.
const std::vector<XLOPER12>& Pool() {
  static const std::vector<XLOPER12> pool = [] {
    static const XString texts[] = {XTEXT("\1a"),     XTEXT("\1A"),      XTEXT("\1b"),      XTEXT("\2ab"),
                                    XTEXT("\4TRUE"),  XTEXT("\4True"),   XTEXT("\0011"),    XTEXT("\0010"),
                                    XTEXT("\0030.5"), XTEXT("\1\u00E9"), XTEXT("\1\u00C9"), XString(1, XCHAR{})};
    std::vector<XLOPER12> cells = {NumberCell(1),     NumberCell(0),      NumberCell(-0.0),   NumberCell(0.5),
                                   BooleanCell(true), BooleanCell(false), ErrorCell(xlerrNA), EmptyCell()};
    for (const XString& text : texts) {
      XLOPER12 cell{};
      cell.val.str = const_cast<XCHAR*>(text.data());
      cell.xltype = xltypeStr;
      cells.push_back(cell);
    }
    return cells;
  }();
  return pool;
}

bool IsHeader(const XLOPER12& cell) { return !IsErrorCell(cell) && !IsEmptyCell(cell); }

bool Matches(const XLOPER12& header, const XLOPER12& cell) {
  if (!IsHeader(cell)) return false;
  if (IsTextCell(cell)) {
    XString one;
    XString other;
    NumberTextBuffer buffer;
    AssignUpperCase(one, TextForm(header, buffer));
    AssignUpperCase(other, CellText(cell));
    return one == other;
  }
  if (TypeOf(cell) != TypeOf(header)) return false;
  return IsBooleanCell(cell) ? CellBoolean(cell) == CellBoolean(header) : CellNumber(cell) == CellNumber(header);
}

std::vector<std::int32_t> Scan(const std::vector<XLOPER12>& headers, const std::vector<XLOPER12>& cells) {
  std::vector<std::int32_t> places;
  bool any = false;
  for (const XLOPER12& header : headers) {
    places.push_back(-1);
    for (std::size_t at = 0; at < cells.size(); ++at) {
      if (Matches(header, cells[at])) places.back() = static_cast<std::int32_t>(at);
    }
    any = any || places.back() >= 0;
  }
  return any ? places : std::vector<std::int32_t>();
}

TEST(HeaderIndex, FindsWhatAScanFinds) {
  std::mt19937 random(7);
  const auto draw = [&random] {
    std::vector<XLOPER12> cells(1 + random() % 6);
    for (XLOPER12& cell : cells) cell = Pool()[random() % Pool().size()];
    return cells;
  };
  int matched = 0;
  for (int round = 0; round < 20'000; ++round) {
    const std::vector<XLOPER12> headers = draw();
    const std::vector<XLOPER12> cells = draw();
    bool isValid = true;
    for (const XLOPER12& cell : headers) isValid = isValid && IsHeader(cell);
    HeaderIndex index;
    ASSERT_EQ(index.Read({headers.data(), static_cast<std::int32_t>(headers.size()), 1}), isValid) << "round " << round;
    if (!isValid) continue;
    const std::vector<std::int32_t> found = index.Match({cells.data(), static_cast<std::int32_t>(cells.size()), 1});
    ASSERT_EQ(found, Scan(headers, cells)) << "round " << round;
    matched += !found.empty();
  }
  EXPECT_GT(matched, 1000);
}

}  // namespace
}  // namespace quillmere::testing
