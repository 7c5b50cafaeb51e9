#include "excel/com/late_bound_windows.h"

#include "frame/entry/callback_scope.h"
#include "frame/errors/exceptions.h"

namespace quillmere {
namespace {

/// Excel reads and answers in its own language unless it is told this one.
constexpr LCID kEnglish = 0x0409;

// How often and how long a busy Excel is waited for. No message is handled meanwhile.
constexpr int kMostTries = 10;
constexpr DWORD kPauseMilliseconds = 20;

/// Excel's own refusal, while a cell is being edited or a dialog is open.
constexpr HRESULT kExcelIsBusy = static_cast<HRESULT>(0x800AC472);

bool MeansBusy(HRESULT result) noexcept {
  return result == RPC_E_CALL_REJECTED || result == RPC_E_SERVERCALL_RETRYLATER || result == kExcelIsBusy;
}

/// What an object tells about its exception.
class ExceptionInfo {
 public:
  ExceptionInfo() = default;
  ExceptionInfo(const ExceptionInfo&) = delete;
  ExceptionInfo& operator=(const ExceptionInfo&) = delete;
  ~ExceptionInfo() { Clear(); }

  EXCEPINFO* Receive() noexcept {
    Clear();
    return &info_;
  }
  /// The code behind DISP_E_EXCEPTION, where one is told.
  HRESULT Code() noexcept {
    if (info_.pfnDeferredFillIn) info_.pfnDeferredFillIn(&info_);
    return FAILED(info_.scode) ? info_.scode : DISP_E_EXCEPTION;
  }

 private:
  void Clear() noexcept {
    SysFreeString(info_.bstrSource);
    SysFreeString(info_.bstrDescription);
    SysFreeString(info_.bstrHelpFile);
    info_ = {};
  }

  EXCEPINFO info_{};
};

template <class Call>
HRESULT CallPatiently(WhenBusy whenBusy, const Call& call) noexcept {
  // What goes wrong in Excel's objects is Excel's own.
  const CallbackScope host;
  for (int tries = 1;; ++tries) {
    const HRESULT result = call();
    if (!MeansBusy(result) || whenBusy == WhenBusy::kFail || tries == kMostTries) return result;
    Sleep(kPauseMilliseconds);
  }
}

ComOutcome Invoke(IDispatch& object, const XCHAR* name, WORD kind, DISPPARAMS parameters, ComVariant& value,
                  WhenBusy whenBusy) noexcept {
  XCHAR* names[] = {const_cast<XCHAR*>(name)};  // only read
  DISPID member = DISPID_UNKNOWN;
  const HRESULT found = CallPatiently(
      whenBusy, [&] { return object.GetIDsOfNames(IID_NULL, names, std::size(names), kEnglish, &member); });
  if (FAILED(found)) return {found, XTEXT("GetIDsOfNames")};
  const HRESULT result = CallPatiently(whenBusy, [&] {
    ExceptionInfo exception;
    UINT wrongArgument = 0;
    const HRESULT invoked = object.Invoke(member, IID_NULL, kEnglish, kind, &parameters, value.Receive(),
                                          exception.Receive(), &wrongArgument);
    return invoked == DISP_E_EXCEPTION ? exception.Code() : invoked;
  });
  return {result, XTEXT("Invoke")};
}

/// A text as an argument; it is the text's own still.
VARIANT TextArgument(const ComText& text) noexcept {
  VARIANT argument{};
  argument.vt = VT_BSTR;
  argument.bstrVal = text.Get();
  return argument;
}

constexpr ComOutcome kNoMemory = {E_OUTOFMEMORY, XTEXT("Invoke")};

}  // namespace

void ComOutcome::ThrowIfFailed() const {
  if (FAILED(result)) throw CXlComException(call, result);
}

ComOutcome GetProperty(IDispatch& object, const XCHAR* name, ComVariant& value, WhenBusy whenBusy) noexcept {
  return Invoke(object, name, DISPATCH_PROPERTYGET, {}, value, whenBusy);
}

ComOutcome PutProperty(IDispatch& object, const XCHAR* name, VARIANT value, WhenBusy whenBusy) noexcept {
  DISPID put = DISPID_PROPERTYPUT;
  ComVariant nothing;
  return Invoke(object, name, DISPATCH_PROPERTYPUT, {&value, &put, 1, 1}, nothing, whenBusy);
}

ComOutcome PutProperty(IDispatch& object, const XCHAR* name, XStringView text, WhenBusy whenBusy) noexcept {
  const ComText argument(text);
  return argument ? PutProperty(object, name, TextArgument(argument), whenBusy) : kNoMemory;
}

ComOutcome CallWithText(IDispatch& object, const XCHAR* name, XStringView text, ComVariant& value,
                        WhenBusy whenBusy) noexcept {
  const ComText copy(text);
  if (!copy) return kNoMemory;
  VARIANT argument = TextArgument(copy);
  return Invoke(object, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {&argument, nullptr, 1, 0}, value, whenBusy);
}

ComOutcome ReadObject(const ComOutcome& call, const ComVariant& value, ComReference<IDispatch>& object) noexcept {
  if (!call) return call;
  object = value.Object();
  return object ? call : ComOutcome{DISP_E_TYPEMISMATCH, XTEXT("Invoke")};
}

ComOutcome GetObjectProperty(IDispatch& object, const XCHAR* name, ComReference<IDispatch>& value,
                             WhenBusy whenBusy) noexcept {
  ComVariant answer;
  const ComOutcome got = GetProperty(object, name, answer, whenBusy);
  return ReadObject(got, answer, value);
}

}  // namespace quillmere
