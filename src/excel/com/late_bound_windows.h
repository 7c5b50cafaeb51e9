// Calls of Excel's object model by name.
#pragma once

#include "excel/com/com_values_windows.h"

namespace quillmere {

/// How a step went: its HRESULT and, where it failed, the name of the call that did.
struct ComOutcome {
  HRESULT result = S_OK;
  const XCHAR* call = XTEXT("");

  explicit operator bool() const noexcept { return SUCCEEDED(result); }
  /// Raises CXlComException where the step failed.
  void ThrowIfFailed() const;
};

/// What is done when Excel refuses a call because it is busy.
enum class WhenBusy {
  kFail,  ///< the refusal is the answer: threads that calculate must not wait
  kWait,  ///< the call is made again a few times, for some tenths of a second
};

/// A failed call means that the object, and with it Excel's whole model, is gone: no call may go there any more.
constexpr bool MeansVanished(HRESULT result) noexcept { return result == RPC_E_DISCONNECTED; }

// Nothing is raised. `value`, released first, receives what the call gave.

ComOutcome GetProperty(IDispatch& object, const XCHAR* name, ComVariant& value, WhenBusy whenBusy) noexcept;
/// Sets a property.
ComOutcome PutProperty(IDispatch& object, const XCHAR* name, VARIANT value, WhenBusy whenBusy) noexcept;
ComOutcome PutProperty(IDispatch& object, const XCHAR* name, XStringView text, WhenBusy whenBusy) noexcept;
/// Calls a method, or gets a property, that takes one text.
ComOutcome CallWithText(IDispatch& object, const XCHAR* name, XStringView text, ComVariant& value,
                        WhenBusy whenBusy) noexcept;
/// Reads what a call before gave as an object; anything else is a failed "Invoke".
ComOutcome ReadObject(const ComOutcome& call, const ComVariant& value, ComReference<IDispatch>& object) noexcept;
/// Gets a property that is an object.
ComOutcome GetObjectProperty(IDispatch& object, const XCHAR* name, ComReference<IDispatch>& value,
                             WhenBusy whenBusy) noexcept;

}  // namespace quillmere
