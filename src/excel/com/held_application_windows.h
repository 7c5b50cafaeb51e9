// The Application object that the add-in holds.
#pragma once

#include "excel/com/com_values_windows.h"

namespace quillmere {

/// Holds Excel's Application object for the main thread, which sets it, and for threads that calculate, which may be
/// using it when it is changed: each use counts a reference of its own.
class CHeldApplication {
 public:
  constexpr CHeldApplication() = default;
  CHeldApplication(const CHeldApplication&) = delete;
  CHeldApplication& operator=(const CHeldApplication&) = delete;

  /// The object; none where none is held.
  ComReference<IDispatch> Get() noexcept;
  /// Holds `application`, which may be none, in place of what was held.
  void Hold(ComReference<IDispatch> application) noexcept;
  /// Lets go of what is held if it is `vanished`.
  void Drop(const ComReference<IDispatch>& vanished) noexcept;

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
  ComReference<IDispatch> application_;
};

/// That of this process. It stays after a bare close, when functions go on being called, and is let go of at the latest
/// when the library is unloaded.
CHeldApplication& HeldApplication() noexcept;

}  // namespace quillmere
