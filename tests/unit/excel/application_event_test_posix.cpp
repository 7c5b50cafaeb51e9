// Events of Excel's Application object make the add-in forget the used rows that it was told. Natively a test can be
// asked for them in the host's place.
#include <gtest/gtest.h>

#include "excel/events/observer.h"
#include "excel/used_range/used_range_reader.h"
#include "frame/call/wrapper.h"
#include "frame/entry/export.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace {

int questions = 0;

}  // namespace

XLL_EXPORT bool QcalcUsedRows(IDSHEET, std::int32_t* first, std::int32_t* last) {
  *first = *last = ++questions;
  return true;
}

XLL_EXPORT std::int16_t CXllComImpl_OnSheetActivate();
XLL_EXPORT std::int16_t CXllComImpl_OnSheetDeactivate();
XLL_EXPORT std::int16_t CXllComImpl_OnCalculate();

namespace quillmere::testing {
namespace {

TEST(ApplicationEvents, ForgetTheUsedRows) {
  FakeExcel excel;
  excel.Give(xlSheetNm, [&] { return excel.LendText(XTEXT("[Book1]Sheet1")); });
  excel.Give(xlSheetId, [&] { return excel.LendReference(7, {}); });
  CallFunction12([](CXlOper&, const CXlOper*) {
    const CXlOper column = CXlOper::Reference(XLREF12{0, kXlMaxRows - 1, 0, 0});
    std::int32_t asked = 0;
    const auto isAskedAnewAfter = [&](auto event) {
      EXPECT_EQ(UsedRangeReader().LastUsedRow(column), ++asked);
      EXPECT_EQ(UsedRangeReader().LastUsedRow(column), asked);
      event();
    };
    isAskedAnewAfter(&CXllComImpl_OnSheetActivate);
    isAskedAnewAfter(&CXllComImpl_OnSheetDeactivate);
    isAskedAnewAfter(&CXllComImpl_OnCalculate);
    CXllObserver observer;
    isAskedAnewAfter([&] { EXPECT_TRUE(observer.CreateCommand(XTEXT("Any")) && observer.OnEvent(1)); });
    EXPECT_EQ(UsedRangeReader().LastUsedRow(column), ++asked);
  });
}

}  // namespace
}  // namespace quillmere::testing
