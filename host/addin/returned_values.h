// What the add-in's functions return: checked, copied and given back.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <thread>

#include "host/addin/call_context.h"
#include "host/process/brief_mutex.h"
#include "host/values/value.h"

namespace qcalc {

class Arguments;
class Library;
struct HostState;
struct RegisteredFunction;

class ReturnedValues {
 public:
  explicit ReturnedValues(HostState& host) : host_(host) {}

  /// Looks up the library's xlAutoFree12 and xlAutoFree.
  void Attach(const Library& library);

  /// Copies what `oper` holds, then releases it as its bits say: through xlAutoFree12 (xlAutoFree) on this thread, or
  /// by taking back a value of the host's. Every breach of the rules goes to the complaints. A null pointer is #NUM!,
  /// an unusable value #VALUE!.
  template <typename Width>
  Value Take(typename Width::Oper* oper, const RegisteredFunction& function, const Arguments& arguments,
             CallContext& frame);

  /// Releases without copying or looking. A block that xlAutoFree12 (xlAutoFree) leaves allocated is owed.
  template <typename Width>
  void Release(typename Width::Oper* oper, CallContext& frame);

  /// What is still owed when the library is gone: a sentence for each function.
  void Close();

 private:
  /// Hands a value to xlAutoFree12 (xlAutoFree) on this thread, as from within the call `frame`. False when the library
  /// does not export it.
  template <typename Width>
  bool HandOver(typename Width::Oper* oper, const CallContext& frame);
  template <typename Width>
  Value Read(const typename Width::Oper& oper, const RegisteredFunction& function, const CallContext& frame);
  void CheckOwner(const void* oper, bool ownsMemory, const RegisteredFunction& function);
  void CheckUnmarked(const void* memory, const Arguments& arguments, const std::string& function);
  /// A reference that came back, or the error that stands for it when it may not.
  Value CheckReference(Value value, const RegisteredFunction& function, const std::string& name);
  void NoteOwed(const void* memory, const std::string& function);
  void LeaveHand(const void* oper);

  HostState& host_;
  const Library* library_ = nullptr;
  void (*autoFree12_)(XLOPER12*) = nullptr;
  void (*autoFree_)(XLOPER*) = nullptr;
  BriefMutex mutex_;
  // Results between their return and their release; two of one address are two threads in one slot.
  std::map<const void*, std::thread::id> inHand_;
  // Results in the library's static data, which belong to the thread that first returned one.
  std::map<const void*, std::thread::id> staticOwners_;
  // Blocks that xlAutoFree12 left allocated, and the functions that returned them.
  std::map<const void*, std::string> owed_;
};

}  // namespace qcalc
