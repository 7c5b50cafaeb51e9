// What each thread that calls into the add-in keeps between calls.
#pragma once

#include "frame/call/fault_guard.h"
#include "xlcall/xlcall.h"

namespace quillmere {

/// A call that asked for used rows.
struct UsedRowsQuestions {
  std::uint64_t call = UINT64_MAX;  ///< its number; at first that of none
  std::uint64_t answersBefore = 0;  ///< the answers that there were, to all threads, before it asked first
};

/// One per thread, created on the thread's first call and released when the thread ends or the library is unloaded.
struct ThreadRecord {
  XLOPER12 returnSlot12{};            ///< the value handed to Excel by the thread's last `_12` call
  XLOPER returnSlot4{};               ///< the same for `_4` calls
  FaultGuard* guard = nullptr;        ///< of the innermost protected call in progress
  ExceptionGlobals exceptionGlobals;  ///< the C++ runtime's, on Windows
  std::uint64_t callNumber = 0;       ///< of the thread's last call of a worksheet function, from 1
  UsedRowsQuestions usedRows;         ///< what that call, or one before it, asked

  ThreadRecord() noexcept;
  ThreadRecord(const ThreadRecord&) = delete;
  ThreadRecord& operator=(const ThreadRecord&) = delete;
  ~ThreadRecord();  ///< releases what the slots hold
};

/// This thread's record, made on first use; null when no memory or no slot is left.
ThreadRecord* CurrentThreadRecord() noexcept;

/// This thread's record if it has one already. Safe where nothing may be allocated.
ThreadRecord* ExistingThreadRecord() noexcept;

}  // namespace quillmere
