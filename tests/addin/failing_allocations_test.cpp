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

class FailingAllocations : public ::testing::Test {
 protected:
  FailingAllocations() {
    session.Open();
    AddinAllocations().TrackBlocks();
  }

  template <typename Oper>
  std::function<bool()> AskForLongName(const char* ask, const char* free) {
    const auto answerOf = session.Host().library->FindAs<Oper* (*)(Oper*)>(ask);
    const auto giveBack = session.Host().library->FindAs<void (*)(Oper*)>(free);
    return [=] {
      Oper action{};
      action.xltype = xltypeInt;
      action.val.w = 1;
      Oper* const answer = answerOf(&action);
      const auto type = static_cast<unsigned>(answer->xltype);
      giveBack(answer);
      return type == xltypeErr || type == (xltypeStr | xlbitDLLFree);
    };
  }
  std::function<bool()> Command(const char* name) {
    const auto entry = session.Host().library->FindAs<int (*)()>(name);
    return [entry] {
      const int answer = entry();
      return answer == 0 || answer == 1;
    };
  }
  /// Calls as Excel does.
  template <typename Call>
  bool Make(const Call& call) {
    const CallContext frame(session.Host(), Place::kCommand, "an entry point", context);
    const EvaluationWatch watch(session.Host());
    const RunningCode running(RunningCode::Owner::kAddin);
    return call();
  }

  Session session{ProgramFolder() / "Quillmere4.xll"};
  const EvaluationContext context{
      &session.ItsWorkbooks(), &session.CurrentSheet(), &session.Names(), &session.ItsAddin(), {}};
};

TEST_F(FailingAllocations, EndInAnAnswerAndLeaveNothingBehind) {
  const NumberStoreExports rows(*session.Host().library, "RowID");
  std::int32_t keys[] = {1, 2}, numbers[] = {3, 4};
  const auto done = [](std::int32_t answer) { return answer == 1 || answer == -1; };
  bool isOpen = true;
  const auto open = session.Host().library->FindAs<int (*)()>("xlAutoOpen");
  const auto binaryType = session.Host().library->FindAs<std::int32_t (*)(const char*)>("l64BitExe");
  const std::function<bool()> calls[] = {
      Command("xlAutoClose"),
      Command("xlAutoRemove"),
      Command("xlAutoAdd"),
      [&] {
        isOpen = open() == 1;
        return true;
      },
      AskForLongName<XLOPER12>("xlAddInManagerInfo12", "xlAutoFree12"),
      AskForLongName<XLOPER>("xlAddInManagerInfo", "xlAutoFree"),
      [&] { return binaryType("no such file") == -1; },
      [&] { return done(rows.put(keys, numbers, 2)); },
      [&] { return done(rows.get(keys, numbers)); },
  };
  std::int64_t before = 0;
  std::int64_t failed = 1;
  ::testing::internal::CaptureStderr();
  for (std::int64_t nth = 0; failed > 0 && !HasFailure(); nth += 1 + nth / 8) {
    failed = nth == 0;
    for (const std::function<bool()>& call : calls) {
      if (nth > 0) AddinAllocations().Fail(nth, nth % 2 ? AllocationFailure::kFromThenOn : AllocationFailure::kOnce);
      EXPECT_TRUE(Make(call)) << "call " << &call - calls << ", allocation " << nth;
      failed += AddinAllocations().Failed();
      EXPECT_TRUE(isOpen || session.Host().registry.All().empty()) << "allocation " << nth;
    }
    rows.destroy();
    // Whole again; what the opening before the last registered is let go at the next removal.
    for (int round = 0; round < 2; ++round)
      for (const std::function<bool()>& call : std::span(calls).first(4)) EXPECT_TRUE(Make(call));
    EXPECT_EQ(PrintLiteral(session.Contents(session.Evaluate(*ParseFormula("=VSTACK(0,{1,2},3)")))), "{1,2;3,3}");
    if (nth == 0) before = AddinAllocations().LiveBlocks();
    EXPECT_EQ(AddinAllocations().LiveBlocks(), before) << "allocation " << nth;
    EXPECT_THAT(session.Host().complaints.Take(), ::testing::IsEmpty());
  }
  ::testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace qcalc
