#include "frame/call/plain_call.h"

#include "frame/call/fault_guard.h"
#include "frame/call/thread_record.h"

namespace quillmere {
namespace {

struct PlainCall {
  std::int32_t (*body)(void*);
  void* context;
  std::int32_t answer;
};

void RunBody(void* context) {
  PlainCall& call = *static_cast<PlainCall*>(context);
  try {
    call.answer = call.body(call.context);
  } catch (...) {
    call.answer = kPlainCallFailed;
  }
}

}  // namespace

std::int32_t RunPlainCall(std::int32_t (*body)(void*), void* context) noexcept {
  ThreadRecord* const record = CurrentThreadRecord();
  if (!record) return kPlainCallFailed;
  PlainCall call{body, context, kPlainCallFailed};
  FaultGuard guard;
  const GuardResult way = CallProtected(&RunBody, &call, *record, guard);
  return way == GuardResult::kReturned ? call.answer : kPlainCallFailed;
}

}  // namespace quillmere
