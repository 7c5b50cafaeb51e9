// What the native add-in asks for a sheet's used rows: an export that it finds by name.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/addin/call_context.h"
#include "host/addin/host_state.h"

namespace qcalc {
namespace {

TEST(UsedRows, AreToldToACall) {
  const auto usedRows =
      reinterpret_cast<bool (*)(IDSHEET, std::int32_t*, std::int32_t*)>(dlsym(RTLD_DEFAULT, "QcalcUsedRows"));
  ASSERT_NE(usedRows, nullptr);
  HostState host;
  Book& book = host.workbooks.BookNamed(XTEXT("Book1"));
  Sheet& sheet = book.SheetNamed(XTEXT("Sheet1"));
  sheet.Set(Area{6, 41, 2, 2}, Value::Number(1));
  std::int32_t first = -1, last = -1;
  EXPECT_FALSE(usedRows(0, &first, &last)) << "outside any call";
  const EvaluationContext evaluation{&host.workbooks, &sheet, nullptr, nullptr, {}};
  const CallContext call(host, Place::kThreadSafeFunction, "a function", evaluation);
  for (const IDSHEET id : {IDSHEET{0}, sheet.Id()}) {
    EXPECT_TRUE(usedRows(id, &first, &last) && first == 6 && last == 41);
  }
  EXPECT_FALSE(usedRows(book.SheetNamed(XTEXT("Empty")).Id(), &first, &last));
  EXPECT_FALSE(usedRows(987'654, &first, &last)) << "no such sheet";
}

}  // namespace
}  // namespace qcalc
