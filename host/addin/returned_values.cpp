#include "host/addin/returned_values.h"

#include <type_traits>

#include "host/addin/arguments.h"
#include "host/addin/call_guards.h"
#include "host/addin/handed_memory.h"
#include "host/addin/host_state.h"
#include "host/api/marshal.h"
#include "host/api/oper_types.h"
#include "host/library/allocation.h"
#include "host/library/invoke.h"
#include "host/library/library.h"
#include "host/text/counted.h"

namespace qcalc {
namespace {

/// The memory that hangs on a value, null when none does.
template <typename Oper>
const void* MemoryOf(Oper oper) {
  return TakeMemory(oper);
}

}  // namespace

void ReturnedValues::Attach(const Library& library) {
  library_ = &library;
  autoFree12_ = library.FindAs<void (*)(XLOPER12*)>("xlAutoFree12");
  autoFree_ = library.FindAs<void (*)(XLOPER*)>("xlAutoFree");
  inHand_.clear();
  staticOwners_.clear();
}

void ReturnedValues::CheckOwner(const void* oper, bool ownsMemory, const RegisteredFunction& function) {
  const std::thread::id self = std::this_thread::get_id();
  const bool isStatic = ownsMemory && library_->Contains(oper);
  const std::string name = CallContext::Current()->function;
  const std::lock_guard lock(mutex_);
  if (!inHand_.emplace(oper, self).second)
    host_.complaints.Add(name +
                         " returned the very value that another call had returned and the host was still copying");
  if (isStatic && function.type.isThreadSafe && staticOwners_.emplace(oper, self).first->second != self)
    host_.complaints.Add(name + " returned one static value on two threads");
}

void ReturnedValues::LeaveHand(const void* oper) {
  const std::lock_guard lock(mutex_);
  inHand_.erase(oper);
}

void ReturnedValues::CheckUnmarked(const void* memory, const Arguments& arguments, const std::string& function) {
  // What the host lent and nobody marked shows among the loans; an argument handed back stays the host's.
  if (host_.loans.IsLent(memory) || arguments.Contains(memory)) return;
  if (RecentBlockBytes(memory))
    host_.complaints.Add(function + " returned memory of the heap without xlbitDLLFree: it is lost");
}

Value ReturnedValues::CheckReference(Value value, const RegisteredFunction& function, const std::string& name) {
  if (!function.type.result.MayBeReference()) {
    host_.complaints.Add(name + " returned a reference and is registered to return values");
    return Value::Error(xlerrValue);
  }
  if (host_.workbooks.FindSheet(value.AsReference().sheet)) return value;
  host_.complaints.Add(name + " returned a reference to a sheet that does not exist");
  return Value::Error(xlerrRef);
}

template <typename Width>
Value ReturnedValues::Take(typename Width::Oper* oper, const RegisteredFunction& function, const Arguments& arguments,
                           CallContext& frame) {
  const std::string& name = frame.function;
  if (!oper) return Value::Error(xlerrNum);
  const std::uint32_t bits = oper->xltype & kFreeBits;
  const void* memory = MemoryOf(*oper);
  // Where no memory is left even for a thread's own slot, all threads may return one constant error.
  const bool isLastResort = oper->xltype == xltypeErr && library_->Contains(oper) && AddinAllocations().Failed() > 0;
  if (!isLastResort) CheckOwner(oper, memory != nullptr, function);
  if ((oper->xltype & ~(kTypeBits | kFreeBits)) != 0)
    host_.complaints.Add(name + " returned a value with unknown bits in its type (" + std::to_string(oper->xltype) +
                         ")");
  const std::string defect = DefectOfMemory<Width>(*oper, host_.loans);
  if (!defect.empty()) host_.complaints.Add(name + " returned " + defect);
  Value value = defect.empty() ? Read<Width>(*oper, function, frame) : Value::Error(xlerrValue);
  if (bits == 0 && memory && defect.empty()) CheckUnmarked(memory, arguments, name);
  LeaveHand(oper);
  Release<Width>(oper, frame);
  return value;
}

template <typename Width>
Value ReturnedValues::Read(const typename Width::Oper& oper, const RegisteredFunction& function,
                           const CallContext& frame) {
  const std::string& name = frame.function;
  const IDSHEET current = frame.evaluation.sheet ? frame.evaluation.sheet->Id() : 0;
  Reading reading = Marshal<Width>::Read(oper, current);
  if (!reading.defect.empty()) host_.complaints.Add(name + " returned " + reading.defect);
  if (HoldsLentText<Width>(oper, host_.loans))
    host_.complaints.Add(name + " returned an array of its own with a text that the host had lent");
  Value value = Value::Error(xlerrValue);
  if (const auto* plain = std::get_if<Value>(&reading.value)) {
    value = plain->IsMissing() ? Value::Empty() : *plain;
  } else if (const auto* integer = std::get_if<ApiInteger>(&reading.value)) {
    value = Value::Number(integer->number);
  } else {
    host_.complaints.Add(name + " returned a value of a kind that no function returns");
  }
  if (value.IsReference()) value = CheckReference(std::move(value), function, name);
  return value;
}

void ReturnedValues::NoteOwed(const void* memory, const std::string& function) {
  AddinAllocations().NoteOwed(memory);
  const std::lock_guard lock(mutex_);
  owed_[memory] = function;
}

void ReturnedValues::Close() {
  std::map<std::string, int> counts;
  for (const auto& [memory, function] : owed_)
    if (AddinAllocations().IsOwed(memory)) ++counts[function];
  for (const auto& [function, count] : counts)
    host_.complaints.Add(function + " returned values with xlbitDLLFree, and the add-in never freed " +
                         std::to_string(count) + " " + NounFor(count, "block") + " of their memory");
  owed_.clear();
  AddinAllocations().ForgiveOwed();
}

template <typename Width>
bool ReturnedValues::HandOver(typename Width::Oper* oper, const CallContext& frame) {
  const CallContext freeing(host_, Place::kFreeing, frame.function, frame.evaluation);
  const ProcessorGuard processor(host_.complaints, freeing.function);
  const auto free = [&](auto* autoFree) {
    if (autoFree) RunAddinCode([&] { autoFree(oper); });
    return autoFree != nullptr;
  };
  if constexpr (std::is_same_v<Width, Wide>)
    return free(autoFree12_);
  else
    return free(autoFree_);
}

template <typename Width>
void ReturnedValues::Release(typename Width::Oper* oper, CallContext& frame) {
  if (!oper) return;
  const std::uint32_t bits = oper->xltype & kFreeBits;
  const void* memory = MemoryOf(*oper);
  if (bits == kFreeBits) {
    host_.complaints.Add(frame.function + " returned a value with both free bits");
  } else if (bits == xlbitXLFree) {
    // One that came back before is no memory to be read, which has been told.
    if (memory && host_.loans.TakeBack(memory) == Loans::Receipt::kUnknown)
      host_.complaints.Add(frame.function + " returned a value with xlbitXLFree that the host had not lent");
  } else if (bits == xlbitDLLFree) {
    // In a larger block the value is a thread's slot, which stays.
    const bool hasOwnBlock = RecentBlockBytes(oper).value_or(2 * sizeof *oper) < 2 * sizeof *oper;
    const bool hasOwnMemory = RecentBlockBytes(memory).has_value();
    if (!HandOver<Width>(oper, frame)) return host_.loans.NoteNeverFreed(frame.function);
    if (hasOwnMemory && RecentBlockBytes(memory)) NoteOwed(memory, frame.function);
    if (hasOwnBlock && RecentBlockBytes(oper)) NoteOwed(oper, frame.function);
  }
  if (host_.faults.TakeSecondFreeing()) {
    if (bits != xlbitDLLFree) HandOver<Width>(oper, frame);
    HandOver<Width>(oper, frame);
  }
}

template Value ReturnedValues::Take<Wide>(XLOPER12*, const RegisteredFunction&, const Arguments&, CallContext&);
template Value ReturnedValues::Take<Narrow>(XLOPER*, const RegisteredFunction&, const Arguments&, CallContext&);
template void ReturnedValues::Release<Wide>(XLOPER12*, CallContext&);
template void ReturnedValues::Release<Narrow>(XLOPER*, CallContext&);

}  // namespace qcalc
