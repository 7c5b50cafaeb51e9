// The functions that Excel and VBA code call by name, with the allocations that they make failing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/addin/evaluation_watch.h"
#include "host/library/allocation.h"
#include "host/scripts/session.h"
#include "host/values/literal.h"
#include "tests/addin/vba_exports.h"

namespace qcalc {
namespace {

/// A call, and whether it ended in one of the answers that it may.
using Call = std::function<bool()>;

template <typename Oper>
Call AskForLongName(const Library& library, const char* ask, const char* free) {
  const auto nameFor = library.FindAs<Oper* (*)(Oper*)>(ask);
  const auto giveBack = library.FindAs<void (*)(Oper*)>(free);
  return [=] {
    Oper action{};
    action.xltype = xltypeInt;
    action.val.w = 1;
    Oper* const name = nameFor(&action);
    const auto type = static_cast<unsigned>(name->xltype);
    giveBack(name);
    return type == xltypeErr || type == (xltypeStr | xlbitDLLFree);
  };
}

TEST(FailingAllocations, EndInAnAnswerAndLeaveNothingBehind) {
  Session session(ProgramFolder() / "Quillmere4.xll");
  session.Open();
  AllocationMeter& allocations = AddinAllocations();
  allocations.TrackBlocks();
  const Library& library = *session.Host().library;
  const auto command = [&](const char* name) { return library.FindAs<int (*)()>(name); };
  const auto open = command("xlAutoOpen");
  const auto binaryType = library.FindAs<std::int32_t (*)(const char*)>("l64BitExe");
  const NumberStoreExports rows(library, "RowID");
  std::int32_t keys[] = {1, 2}, numbers[] = {3, 4}, stored = 0;
  bool isOpen = true;
  const Call calls[] = {[close = command("xlAutoClose")] { return close() == 1; },
                        [remove = command("xlAutoRemove")] { return remove() == 1; },
                        [&] { return (isOpen = open() == 1) || true; },
                        AskForLongName<XLOPER12>(library, "xlAddInManagerInfo12", "xlAutoFree12"),
                        AskForLongName<XLOPER>(library, "xlAddInManagerInfo", "xlAutoFree"),
                        [&] { return binaryType("no such file") == -1; },
                        [&] { return std::abs(stored = rows.put(keys, numbers, 2)) == 1; },
                        [&] { return std::abs(rows.get(keys, numbers)) == 1; }};
  const EvaluationContext context{
      &session.ItsWorkbooks(), &session.CurrentSheet(), &session.Names(), &session.ItsAddin(), {}};
  const auto make = [&](const Call& call) {
    const CallContext frame(session.Host(), Place::kCommand, "an entry point", context);
    const EvaluationWatch watch(session.Host());
    const RunningCode running(RunningCode::Owner::kAddin);
    return call();
  };

  std::int64_t before = 0;
  std::int64_t failed = 1;
  ::testing::internal::CaptureStderr();
  for (std::int64_t nth = 0; failed > 0 && !testing::Test::HasFailure(); nth += 1 + nth / 8) {
    failed = nth == 0;
    for (const Call& call : calls) {
      if (nth > 0) allocations.Fail(nth, nth % 2 ? AllocationFailure::kFromThenOn : AllocationFailure::kOnce);
      EXPECT_TRUE(make(call)) << "call " << &call - calls << ", allocation " << nth;
      failed += allocations.Failed();
      EXPECT_TRUE(isOpen || session.Host().registry.All().empty()) << "allocation " << nth;
    }
    const NumberStoreExports::Pairs pairs = rows.Entries();
    EXPECT_EQ(pairs.size() == 2, stored == 1) << "allocation " << nth;
    for (const auto& [key, number] : pairs) EXPECT_EQ(number, key + 2);
    rows.destroy();
    // Whole again; what the opening before the last registered is let go at the next removal.
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(make(calls[i % 3]));
    EXPECT_EQ(PrintLiteral(session.Contents(session.Evaluate(*ParseFormula("=VSTACK(0,{1,2},3)")))), "{1,2;3,3}");
    if (nth == 0) before = allocations.LiveBlocks();
    EXPECT_EQ(allocations.LiveBlocks(), before) << "allocation " << nth;
    EXPECT_THAT(session.Host().complaints.Take(), ::testing::IsEmpty());
  }
  ::testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace qcalc
