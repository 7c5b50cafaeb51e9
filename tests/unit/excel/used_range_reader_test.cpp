// When a sheet's used rows are asked for, and for whom an answer is kept.
#include "excel/used_range/used_range_reader.h"

#include <gtest/gtest.h>

#include <future>

#include "frame/call/wrapper.h"
#include "frame/errors/exceptions.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace quillmere::testing {
namespace {

int questions = 0;
constinit CUsedRangeReader* reader = nullptr;

const CXlOper& WholeColumn() {
  static const CXlOper column = CXlOper::Reference(XLREF12{0, kXlMaxRows - 1, 0, 0});
  return column;
}

/// A worksheet function that cuts three arguments; what is kept is forgotten before the last.
void AskThreeTimes(CXlOper& result, const CXlOper*) {
  reader->LastUsedRow(WholeColumn());
  reader->LastUsedRow(WholeColumn());
  result.SetNumber(questions);
  EXPECT_TRUE(reader->Forget(kStoreWait));
  reader->LastUsedRow(WholeColumn());
}

TEST(UsedRangeReader, AsksOnceACall) {
  FakeExcel excel;
  excel.Give(xlSheetNm, [&] { return excel.LendText(XTEXT("[Book1]Sheet1")); });
  CUsedRangeReader asked([](XStringView sheet) -> std::optional<UsedRows> {
    EXPECT_EQ(sheet, XTEXT("[Book1]Sheet1"));
    return UsedRows{3, 5 + questions++};
  });
  reader = &asked;
  questions = 0;
  EXPECT_EQ(CallFunction12(&AskThreeTimes)->val.num, 1);
  EXPECT_EQ(questions, 2) << "what is forgotten is asked for again";
  EXPECT_EQ(CallFunction12(&AskThreeTimes)->val.num, 3) << "a sheet may have changed between two calls";
  EXPECT_EQ(asked.LastUsedRow(WholeColumn()), 9);
  EXPECT_EQ(asked.LastUsedRow(WholeColumn()), 10) << "outside a call nobody says how long an answer is good";

  excel.Fail(xlSheetNm, xlretFailed);
  EXPECT_EQ(asked.LastUsedRow(WholeColumn()), std::nullopt);
  excel.Fail(xlSheetNm, xlretUncalced);
  EXPECT_THROW(asked.LastUsedRow(WholeColumn()), CXlFunctionEnd);
}

// The second thread puts its question while the first holds the lock, and is answered by what the first was told.
TEST(UsedRangeReader, ThreadsThatWaitShareTheAnswer) {
  static std::promise<void> bothCame;
  static std::future<std::optional<std::int32_t>> second;
  FakeExcel excel;
  excel.Give(xlSheetNm, [&, callers = 0]() mutable {
    const XLOPER12 name = excel.LendText(XTEXT("[Book1]Sheet1"));
    if (++callers == 2) bothCame.set_value();
    return name;
  });
  CUsedRangeReader asked([](XStringView) -> std::optional<UsedRows> {
    EXPECT_FALSE(second.valid()) << "asked twice";
    second = std::async(std::launch::async, [] { return reader->LastUsedRow(WholeColumn()); });
    bothCame.get_future().wait();
    EXPECT_FALSE(std::async(std::launch::async, [] { return reader->Forget(std::chrono::milliseconds(1)); }).get());
    return UsedRows{0, 9};
  });
  reader = &asked;
  EXPECT_EQ(asked.LastUsedRow(WholeColumn()), 9);
  EXPECT_EQ(second.get(), 9);
}

}  // namespace
}  // namespace quillmere::testing
