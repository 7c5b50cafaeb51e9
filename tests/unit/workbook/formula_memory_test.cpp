// The formula memory while somebody holds the stores' lock.
#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "exports.h"
#include "frame/values/value_memory.h"
#include "tests/unit/fixtures/fake_excel.h"
#include "workbook/stores_mutex.h"

namespace quillmere::workbook {
namespace {

TEST(FormulaMemory, IsWrittenWhenTheDeadlineHasPassedAndReadWithoutTheLock) {
  testing::FakeExcel excel;
  const XLREF12 cell{4, 4, 2, 2};
  excel.Give(xlfCaller, [&] { return excel.LendReference(1, {&cell, 1}); });
  excel.Give(xlSheetNm, [&] { return excel.LendText(XTEXT("[Book1]Sheet1")); });
  std::promise<void> inside, leave;
  const auto holder = std::async(std::launch::async, [&, mayLeave = leave.get_future()] {
    const CStoreLock lock(StoresMutex());
    inside.set_value();
    mayLeave.wait();
  });
  inside.get_future().wait();

  const CXlOper seven = CXlOper::Number(7);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(SETMEM_12(seven.ForCallback(), nullptr)->val.num, 7);
  EXPECT_GE(std::chrono::steady_clock::now() - start, kStoreWait);
  EXPECT_EQ(GETMEM_12(nullptr)->val.num, 7);
  leave.set_value();
}

}  // namespace
}  // namespace quillmere::workbook
