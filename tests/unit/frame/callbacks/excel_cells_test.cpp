// What the frame asks of Excel about cells: the calling ones, and the rows that a sheet uses.
#include <gtest/gtest.h>

#include "frame/callbacks/caller.h"
#include "frame/callbacks/used_range.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace quillmere {
namespace {

/// The error that a call raises; 0 for none.
template <class Call>
std::int32_t ErrorOf(const Call& call) {
  try {
    call();
  } catch (const CXlErrorException& error) {
    return error.Code();
  }
  return 0;
}

TEST(CallingCells, AreOneAreaAndHaveASize) {
  testing::FakeExcel excel;
  std::vector<XLREF12> areas = {{4, 6, 1, 2}};
  excel.Give(xlfCaller, [&] { return excel.LendReference(7, areas); });
  EXPECT_EQ(CallingCells().Areas().front().rwLast, 6);
  EXPECT_EQ(CallingCellsSize().rows, 3);
  EXPECT_EQ(CallingCellsSize().columns, 2);
  for (const std::vector<XLREF12>& none : {std::vector<XLREF12>{{0, 0, 0, 0}, {2, 2, 0, 0}}, {}}) {
    areas = none;
    EXPECT_FALSE(CallingCells().IsSet());
    EXPECT_EQ(ErrorOf(&CallingCellsSize), xlerrNA);
  }
  excel.Fail(xlfCaller, xlretFailed);
  EXPECT_EQ(ErrorOf(&CallingCellsSize), xlerrNA);
}

TEST(UsedRows, CutTallReferencesAlone) {
  struct Reader : IXlUsedRangeReader {
    std::optional<std::int32_t> last;
    std::optional<std::int32_t> LastUsedRow(const CXlOper&) override { return last; }
  } reader;
  SetUsedRangeReader(&reader);
  const auto lastRow = [](const XLREF12& area) {
    const CXlOper reference = CXlOper::Reference(7, {&area, 1});
    const CXlOper cut = CutToUsedRows(reference);
    EXPECT_EQ(cut.Sheet(), 7u);
    EXPECT_EQ(cut.Areas().front().rwFirst, area.rwFirst);
    return cut.Areas().front().rwLast;
  };
  reader.last = 499;
  EXPECT_EQ(lastRow({0, kMostRowsUncut, 0, 3}), 499);
  EXPECT_EQ(lastRow({0, kMostRowsUncut - 1, 0, 3}), kMostRowsUncut - 1) << "not tall enough";
  EXPECT_EQ(lastRow({10, kXlMaxRows - 1, 0, 0}), 499);
  EXPECT_EQ(lastRow({600, kXlMaxRows - 1, 0, 0}), 600) << "nothing used in it";
  reader.last.reset();
  EXPECT_EQ(lastRow({0, kXlMaxRows - 1, 0, 0}), kXlMaxRows - 1) << "nobody can tell";
  reader.last = 5;
  const XLREF12 areas[] = {{0, kXlMaxRows - 1, 0, 0}, {0, kXlMaxRows - 1, 2, 2}};
  const CXlOper two = CXlOper::Reference(7, areas), number = CXlOper::Number(2);
  EXPECT_EQ(CutToUsedRows(two).Areas().size(), 2u);
  EXPECT_EQ(CutToUsedRows(number).AsNumber(), 2);
  SetUsedRangeReader(nullptr);
}

}  // namespace
}  // namespace quillmere
