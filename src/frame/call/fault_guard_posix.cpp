// Natively a fault ends the process with the sanitizer's report, so the guard only keeps its place in the chain of
// calls.
#include "frame/call/fault_guard.h"
#include "frame/call/thread_record.h"
#include "frame/entry/callback_scope.h"

namespace quillmere {

GuardResult CallProtected(void (*body)(void*), void* context, ThreadRecord& record, FaultGuard& guard) noexcept {
  guard.outer = record.guard;
  record.guard = &guard;
  body(context);
  record.guard = guard.outer;
  return GuardResult::kReturned;
}

CallbackScope::CallbackScope() noexcept : guard_(nullptr) {}

CallbackScope::~CallbackScope() = default;

}  // namespace quillmere
