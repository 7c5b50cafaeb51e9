// The used rows of sheets, as worksheet functions ask for them.
#pragma once

#include <atomic>
#include <chrono>
#include <unordered_map>

#include "excel/used_range/ask_used_rows.h"
#include "frame/call/store_lock.h"
#include "frame/callbacks/used_range.h"

namespace quillmere {

/// Every call of a worksheet function asks anew: not every change of a sheet is told. What was answered is kept for the
/// further arguments of that call, and for the threads that were waiting meanwhile to ask the same. A timed mutex
/// guards it; a thread that does not get it in time asks for itself.
class CUsedRangeReader final : public IXlUsedRangeReader {
 public:
  /// Who is asked: AskUsedRows, or its like.
  using Ask = std::optional<UsedRows> (*)(XStringView sheet);

  explicit CUsedRangeReader(Ask ask = &AskUsedRows) noexcept : ask_(ask) {}

  std::optional<std::int32_t> LastUsedRow(const CXlOper& reference) override;

  /// Forgets what is kept; false when the lock could not be had within `wait`.
  bool Forget(std::chrono::milliseconds wait);

 private:
  /// What was answered about one sheet, and the how manieth answer it was.
  struct KeptAnswer {
    UsedRows rows;
    std::uint64_t number;
  };

  std::optional<UsedRows> KeptOrAsked(const XString& sheet, std::uint64_t answersBefore);

  const Ask ask_;
  CStoreMutex mutex_;
  std::unordered_map<XString, KeptAnswer> kept_;
  std::atomic<std::uint64_t> answers_ = 0;
};

/// The reader of this process, for its whole life.
CUsedRangeReader& UsedRangeReader() noexcept;

}  // namespace quillmere
