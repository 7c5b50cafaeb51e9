#include "frame/call/wrapper.h"

#include <exception>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "frame/app/xll_app.h"
#include "frame/call/fault_guard.h"
#include "frame/call/thread_record.h"
#include "frame/convert/error_result.h"
#include "frame/errors/current_exception.h"
#include "frame/errors/exceptions.h"
#include "frame/text/ansi_text.h"
#include "frame/values/cell_copy.h"
#include "frame/values/kept_blocks.h"
#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"

namespace quillmere {
namespace {

/// Handed back when a thread's record cannot be had. They carry no ownership bit and are never written.
constinit XLOPER12 lastResort12 = {{.err = xlerrValue}, xltypeErr};
constinit XLOPER lastResort4 = {{.err = xlerrValue}, xltypeErr};

/// The longest text that C% and C pass.
constexpr std::size_t kMaxPlainText = kXlMaxText;

/// The length of a zero-terminated text of the host's, which may be null; one unit more than the limit when it is
/// longer.
template <class Char>
std::size_t LengthOf(const Char* text) {
  std::size_t length = 0;
  while (text && length <= kMaxPlainText && text[length] != Char{}) ++length;
  return length;
}

CXlOper WrapText4(const char* text) {
  std::string bytes(LengthOf(text), '\0');
  CopyBytes(bytes.data(), text, bytes.size());
  return CXlOper::Text(WidenAnsi(bytes));
}

CXlOper Wrap(const RawArgument& raw) {
  switch (raw.form) {
    case RawArgument::Form::kOper12:
      return CXlOper::Borrow(raw.oper12);
    case RawArgument::Form::kOper4:
      return FromValue4(raw.oper4);
    case RawArgument::Form::kInt:
      return CXlOper::Integer(raw.integer);
    case RawArgument::Form::kText12:
      return CXlOper::Text({raw.text12, LengthOf(raw.text12)});
    case RawArgument::Form::kText4:
      return WrapText4(raw.text4);
    case RawArgument::Form::kBoolean:
      return CXlOper::Boolean(raw.integer != 0);
  }
  ThrowBadOperType();
}

/// The wrapped arguments of one call, destroyed in reverse order.
class WrappedArguments {
 public:
  explicit WrappedArguments(void* storage) noexcept : first_(static_cast<CXlOper*>(storage)) {}
  WrappedArguments(const WrappedArguments&) = delete;
  WrappedArguments& operator=(const WrappedArguments&) = delete;
  ~WrappedArguments() {
    while (count_ > 0) std::destroy_at(first_ + --count_);
  }

  void Add(const RawArgument& raw) {
    new (first_ + count_) CXlOper(Wrap(raw));
    ++count_;
  }
  const CXlOper* First() const noexcept { return first_; }

  /// A result that views the wrapper's own copy of a text argument takes the copy over, which would be gone otherwise
  /// before Excel reads it.
  void GiveTextTo(CXlOper& result) noexcept {
    for (std::size_t at = 0; at < count_; ++at) {
      if (!result.ViewsTextOf(first_[at])) continue;
      result = std::move(first_[at]);
      return;
    }
  }

 private:
  CXlOper* first_;
  std::size_t count_ = 0;
};

/// One call in progress. The arguments outlive the result's way into the return slot, since the result may view them.
struct Call {
  FunctionBody body;
  std::span<const RawArgument> raw;
  WrappedArguments arguments;
  CXlOper result;
};

void CallBody(Call& call) {
  for (const RawArgument& raw : call.raw) call.arguments.Add(raw);
  call.body(call.result, call.arguments.First());
}

/// Writes the exception being handled into the result. What fails on the way leaves a text or an error value that needs
/// no memory.
void TranslateCurrentException(CXlOper& result) noexcept {
  try {
    try {
      throw;
    } catch (const CXlRuntimeException& error) {
      if (const CXllApp* const app = CXllApp::Instance())
        app->TranslateError(result, error);
      else
        WriteError(result, error);
    } catch (const CXlFunctionEnd&) {
      result.SetError(xlerrValue);
    } catch (const std::bad_alloc&) {
      WriteMemoryError(result);
    } catch (...) {
      WriteErrorText(result, MessageOfCurrentException());
    }
  } catch (const std::bad_alloc&) {
    WriteMemoryError(result);
  } catch (...) {
    result.SetError(xlerrValue);
  }
}

void RunBody(void* context) {
  Call& call = *static_cast<Call*>(context);
  try {
    CallBody(call);
  } catch (...) {
    TranslateCurrentException(call.result);
  }
}

/// Runs the call inside a guard; whatever happens, its result can be handed back afterwards.
void RunGuarded(Call& call, ThreadRecord& record) noexcept {
  FaultGuard guard;
  if (CallProtected(&RunBody, &call, record, guard) == GuardResult::kReturned) return;
  // The body was left in the middle: nothing that its result may point to can be trusted to be freed.
  std::construct_at(&call.result);
  try {
    throw CXlStructuredException(guard.faultCode);
  } catch (...) {
    TranslateCurrentException(call.result);
  }
}

}  // namespace

XLOPER12* RunFunction12(FunctionBody body, const RawArgument* raw, std::size_t count, void* storage) noexcept {
  ThreadRecord* const record = CurrentThreadRecord();
  if (!record) return &lastResort12;
  ReleaseIdleBlocks();
  ++record->callNumber;
  Call call{body, {raw, count}, WrappedArguments(storage), {}};
  RunGuarded(call, *record);
  ReleaseOwned(record->returnSlot12);
  call.arguments.GiveTextTo(call.result);
  call.result.ReturnInto(record->returnSlot12);
  return &record->returnSlot12;
}

XLOPER* RunFunction4(FunctionBody body, const RawArgument* raw, std::size_t count, void* storage) noexcept {
  ThreadRecord* const record = CurrentThreadRecord();
  if (!record) return &lastResort4;
  ReleaseIdleBlocks();
  ++record->callNumber;
  Call call{body, {raw, count}, WrappedArguments(storage), {}};
  RunGuarded(call, *record);
  ReleaseOwned4(record->returnSlot4);
  if (!ReturnInto4(call.result, record->returnSlot4)) WriteMemoryError4(record->returnSlot4);
  return &record->returnSlot4;
}

}  // namespace quillmere
