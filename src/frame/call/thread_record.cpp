#include "frame/call/thread_record.h"

#include <atomic>

#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"

namespace quillmere {

namespace {

constinit std::atomic<std::uint32_t> recordsMade = 0;

}  // namespace

ThreadRecord::ThreadRecord() noexcept : callNumber(std::uint64_t{recordsMade.fetch_add(1)} << 32) {
  returnSlot12.xltype = xltypeNil;
  returnSlot4.xltype = xltypeNil;
}

ThreadRecord::~ThreadRecord() {
  ReleaseOwned(returnSlot12);
  ReleaseOwned4(returnSlot4);
}

}  // namespace quillmere
