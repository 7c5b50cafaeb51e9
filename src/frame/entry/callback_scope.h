// Telling the host's faults from the add-in's own.
#pragma once

namespace quillmere {

struct FaultGuard;

/// Marks the host as running on this thread while it lives: what goes wrong in a callback is the host's own. The
/// fault guard implements it (frame/call/fault_guard.h).
class CallbackScope {
 public:
  CallbackScope() noexcept;
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;
  ~CallbackScope();

 private:
  [[maybe_unused]] FaultGuard* guard_;  ///< nothing natively
};

}  // namespace quillmere
