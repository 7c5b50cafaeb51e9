#include "excel/used_range/used_range_reader.h"

#include "frame/call/plain_call.h"
#include "frame/call/thread_record.h"
#include "frame/callbacks/callbacks.h"
#include "frame/entry/export.h"
#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

/// No more sheets are remembered at a time.
constexpr std::size_t kMostSheets = 1'000;

/// The answers before this thread's present call asked first: what came later is good for it. Outside any call each
/// question stands alone.
std::uint64_t AnswersBeforeCall(std::uint64_t answersNow) {
  ThreadRecord* const thread = ExistingThreadRecord();
  if (!thread || !thread->guard) return answersNow;
  if (thread->usedRows.call != thread->callNumber) thread->usedRows = {thread->callNumber, answersNow};
  return thread->usedRows.answersBefore;
}

CUntilUnloaded<CUsedRangeReader> theReader;

}  // namespace

std::optional<std::int32_t> CUsedRangeReader::LastUsedRow(const CXlOper& reference) {
  const std::uint64_t answersBefore = AnswersBeforeCall(answers_.load(std::memory_order_acquire));
  CXlOper name;
  if (TryCallExcel(name, xlSheetNm, reference) != xlretSuccess || !name.IsText()) return std::nullopt;
  const XString sheet(name.AsText());
  const CStoreLock lock(mutex_, kStoreWait);
  const std::optional<UsedRows> rows = lock.HoldsLock() ? KeptOrAsked(sheet, answersBefore) : ask_(sheet);
  return rows ? std::optional(rows->last) : std::nullopt;
}

bool CUsedRangeReader::Forget(std::chrono::milliseconds wait) {
  const CStoreLock lock(mutex_, wait);
  if (!lock.HoldsLock()) return false;
  kept_.clear();
  return true;
}

std::optional<UsedRows> CUsedRangeReader::KeptOrAsked(const XString& sheet, std::uint64_t answersBefore) {
  if (const auto kept = kept_.find(sheet); kept != kept_.end() && kept->second.number > answersBefore)
    return kept->second.rows;
  const std::optional<UsedRows> rows = ask_(sheet);
  if (!rows) return std::nullopt;
  if (kept_.size() >= kMostSheets) kept_.clear();
  kept_[sheet] = {*rows, answers_.fetch_add(1, std::memory_order_acq_rel) + 1};
  return rows;
}

CUsedRangeReader& UsedRangeReader() noexcept { return *theReader; }

}  // namespace quillmere

/// For VBA code: forgets the used rows that are kept. 1, or -1 when they stayed locked.
XLL_EXPORT std::int32_t Destroy_Used_TopBottom() {
  using namespace quillmere;
  return CallPlain([] { return UsedRangeReader().Forget(kDestroyWait) ? 1 : kPlainCallFailed; });
}
