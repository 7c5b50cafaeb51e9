#include "host/addin/addin.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "host/addin/call_guards.h"
#include "host/library/allocation.h"
#include "host/library/invoke.h"
#include "host/library/left_behind.h"
#include "host/library/message_box.h"
#include "host/library/running_threads.h"
#include "host/text/counted.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

Place PlaceOf(const RegisteredFunction& function) {
  if (function.IsCommand()) return Place::kCommand;
  if (function.type.isThreadSafe) return Place::kThreadSafeFunction;
  return function.type.isMacroEquivalent ? Place::kMacroFunction : Place::kFunction;
}

std::string NameOf(const RegisteredFunction& function) {
  return ToUtf8(function.name.empty() ? function.procedure : function.name);
}

std::uintptr_t CallExport(const RegisteredFunction& function, const Arguments& arguments, const CallContext& frame) {
  const ProcessorGuard processor(frame.host.complaints, frame.function);
  return RunAddinCode([&] { return Invoke(function.entry, arguments.Words()); });
}

}  // namespace

Addin::~Addin() {
  if (library_) Unload();
}

bool Addin::Load(const std::filesystem::path& path, std::string& error) {
  if (!callLibrary_) callLibrary_ = LoadCallLibrary();
  HostState::SetLoaded(&host_);
  const CallNote note("its loading");
  threadsBefore_ = RunningThreads(nullptr);
  library_ = Library::Load(path, error);
  if (!library_) {
    HostState::SetLoaded(nullptr);
    return false;
  }
  host_.library = library_.get();
  RedirectMessageBoxes(*library_);
  MeterAllocations(*library_);
  NoteSystemObjects(*library_);
  returnedValues_.Attach(*library_);
  if (const auto setEntryPoint = library_->FindAs<void (*)(XlMdCallBack12)>("SetExcel12EntryPt"))
    RunAddinCode([&] { setEntryPoint(callback_); });
  return true;
}

std::optional<int> Addin::CallEntryPoint(const char* name, const EvaluationContext& context) {
  const auto entry = library_->FindAs<int (*)()>(name);
  if (!entry) return std::nullopt;
  const CallContext frame(host_, Place::kCommand, name, context);
  const ScreenGuard screen(host_.complaints, host_.application, frame.function);
  const FolderGuard folder(host_.complaints, frame.function);
  const ProcessorGuard processor(host_.complaints, frame.function);
  return RunAddinCode(entry);
}

bool Addin::HasLeftThreads() {
  using namespace std::chrono_literals;
  // A thread that has been joined may be known to the system for a moment more.
  constexpr int kTries = 30;
  std::size_t left = 0;
  for (int i = 0; i < kTries; ++i) {
    if (i > 0) std::this_thread::sleep_for(10ms);
    const std::set<std::uint64_t> threads = RunningThreads(library_.get());
    left = static_cast<std::size_t>(
        std::count_if(threads.begin(), threads.end(), [&](auto id) { return !threadsBefore_.contains(id); }));
    if (left == 0) return false;
  }
  host_.complaints.Add("the add-in left " + std::to_string(left) + " " +
                       NounFor(static_cast<std::int64_t>(left), "thread") + " running when it was to be unloaded");
  return true;
}

void Addin::Unload() {
  const std::filesystem::path path = library_->Path();
  const CallNote note("its unloading");
  const bool isInUse = HasLeftThreads();
  // Its code would go from under them.
  if (isInUse) library_->Pin();
  if (const std::string left = TakeAwayLeftBehind(); !left.empty())
    host_.complaints.Add("the add-in left " + left + " behind when it was to be unloaded");
  host_.library = nullptr;
  library_.reset();
  AddinBlocks().Clear();
  HostState::SetLoaded(nullptr);
  host_.registry.Clear();
  if (!isInUse && Library::IsMapped(path)) host_.complaints.Add("the library is still mapped after it was unloaded");
  returnedValues_.Close();
  for (std::string& sentence : host_.loans.Close()) host_.complaints.Add(std::move(sentence));
}

const AddinFunction* Addin::Find(XStringView name) const {
  const RegisteredFunction* function = host_.registry.Find(name);
  return function && !function->IsCommand() ? function : nullptr;
}

const AddinFunction* Addin::FindCommand(XStringView name) const {
  const RegisteredFunction* function = host_.registry.Find(name);
  return function && function->IsCommand() ? function : nullptr;
}

const RegisteredFunction& Addin::ByInterface(const RegisteredFunction& function) const {
  return host_.settings.narrowCalls && function.narrow ? *function.narrow : function;
}

Value Addin::Call(const AddinFunction& called, std::span<const Value> operands, const EvaluationContext& context) {
  const RegisteredFunction& function = ByInterface(static_cast<const RegisteredFunction&>(called));
  if (function.type.isThreadSafe) return CallHere(function, operands, context);
  const CallContext* outer = CallContext::Current();
  if (outer && outer->place == Place::kThreadSafeFunction) throw NotThreadSafe{};
  Value result;
  host_.mainThread.Do([&] { result = CallHere(function, operands, context); });
  return result;
}

Value Addin::CallHere(const RegisteredFunction& function, std::span<const Value> operands,
                      const EvaluationContext& context) {
  Arguments arguments(argumentCache_, host_.FormOf(context), host_.settings.marks);
  if (const auto refused = arguments.Build(function, operands)) return Value::Error(*refused);
  CallContext frame(host_, PlaceOf(function), NameOf(function), context);
  for (const ArgumentFault& fault : host_.faults.TakeArgumentFaults()) {
    if (const std::string reason = arguments.Spoil(function, fault); !reason.empty())
      throw FormulaError(frame.function + " was not called: " + reason);
    frame.isSpoilt = true;
  }
  std::optional<FolderGuard> folder;
  if (host_.settings.watchesFolder) folder.emplace(host_.complaints, frame.function);
  std::optional<ScreenGuard> screen;
  if (frame.place == Place::kCommand) screen.emplace(host_.complaints, host_.application, frame.function);
  const std::uintptr_t word = CallExport(function, arguments, frame);
  if (const int changed = arguments.FirstChanged(true))
    host_.complaints.Add(frame.function + " changed its argument " + std::to_string(changed));
  Value result = TakeResult(function, word, arguments, frame);
  if (frame.isVolatile && context.askedVolatile) *context.askedVolatile = *frame.isVolatile;
  if (frame.uncalculated) throw UncalculatedCell(*frame.uncalculated);
  return result;
}

Value Addin::TakeResult(const RegisteredFunction& function, std::uintptr_t word, const Arguments& arguments,
                        CallContext& frame) {
  const Passing passing = PassingOf(function.type.result);
  if (passing == Passing::kOper12)
    return returnedValues_.Take<Wide>(reinterpret_cast<XLOPER12*>(word), function, arguments, frame);
  if (passing == Passing::kOper)
    return returnedValues_.Take<Narrow>(reinterpret_cast<XLOPER*>(word), function, arguments, frame);
  switch (function.type.result.letter) {
    case 'A':
      return Value::Boolean(static_cast<std::uint16_t>(word) != 0);
    case 'H':
      return Value::Number(static_cast<std::uint16_t>(word));
    case 'I':
      return Value::Number(static_cast<std::int16_t>(static_cast<std::uint16_t>(word)));
    default:
      return Value::Number(static_cast<std::int32_t>(static_cast<std::uint32_t>(word)));
  }
}

Timing Addin::Time(const RegisteredFunction& registered, std::span<const Value> operands, int count,
                   const EvaluationContext& context) {
  using Clock = std::chrono::steady_clock;
  const RegisteredFunction& function = ByInterface(registered);
  Timing timing;
  Arguments arguments(argumentCache_, host_.FormOf(context), host_.settings.marks);
  if (const auto refused = arguments.Build(function, operands)) {
    timing.result = Value::Error(*refused);
    return timing;
  }
  CallContext frame(host_, PlaceOf(function), NameOf(function), context);
  const FolderGuard folder(host_.complaints, frame.function);
  const Passing passing = PassingOf(function.type.result);
  std::vector<double> microseconds;
  for (int i = 1; i <= count; ++i) {
    frame.mustReturn = 0;
    const auto start = Clock::now();
    const std::uintptr_t word = CallExport(function, arguments, frame);
    if (i < count) {
      if (passing == Passing::kOper12) returnedValues_.Release<Wide>(reinterpret_cast<XLOPER12*>(word), frame);
      if (passing == Passing::kOper) returnedValues_.Release<Narrow>(reinterpret_cast<XLOPER*>(word), frame);
    } else {
      timing.result = TakeResult(function, word, arguments, frame);
      if (count > 1) break;
    }
    microseconds.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
  }
  std::sort(microseconds.begin(), microseconds.end());
  timing.minimum = microseconds.front();
  timing.median = microseconds[microseconds.size() / 2];
  return timing;
}

}  // namespace qcalc
