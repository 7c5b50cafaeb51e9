#include "frame/call/thread_record.h"

#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"

namespace quillmere {

ThreadRecord::ThreadRecord() noexcept {
  returnSlot12.xltype = xltypeNil;
  returnSlot4.xltype = xltypeNil;
}

ThreadRecord::~ThreadRecord() {
  ReleaseOwned(returnSlot12);
  ReleaseOwned4(returnSlot4);
}

}  // namespace quillmere
