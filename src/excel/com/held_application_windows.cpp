#include "excel/com/held_application_windows.h"

#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

constinit CUntilUnloaded<CHeldApplication> heldApplication;

}  // namespace

ComReference<IDispatch> CHeldApplication::Get() noexcept {
  AcquireSRWLockShared(&lock_);
  ComReference<IDispatch> application = application_;
  ReleaseSRWLockShared(&lock_);
  return application;
}

void CHeldApplication::Hold(ComReference<IDispatch> application) noexcept {
  AcquireSRWLockExclusive(&lock_);
  std::swap(application_, application);
  ReleaseSRWLockExclusive(&lock_);
}

void CHeldApplication::Drop(const ComReference<IDispatch>& vanished) noexcept {
  ComReference<IDispatch> released;
  AcquireSRWLockExclusive(&lock_);
  if (application_.Get() == vanished.Get()) std::swap(application_, released);
  ReleaseSRWLockExclusive(&lock_);
}

CHeldApplication& HeldApplication() noexcept { return *heldApplication; }

}  // namespace quillmere
