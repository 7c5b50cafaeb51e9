// The add-in: loading it, and calling its entry points and functions.
#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "host/addin/arguments.h"
#include "host/addin/call_context.h"
#include "host/addin/host_state.h"
#include "host/addin/returned_values.h"
#include "host/calculation/addin_functions.h"
#include "host/library/library.h"

namespace qcalc {

/// Microseconds of one call, and what the last one returned.
struct Timing {
  double median = 0;
  double minimum = 0;
  Value result;
};

/// One library at a time; made on the main thread, where all but Find and Call are called.
class Addin final : public IAddinFunctions {
 public:
  /// `callback` is what the add-in is to call back.
  Addin(HostState& host, XlMdCallBack12 callback) : host_(host), callback_(callback), returnedValues_(host) {}
  ~Addin() override;

  /// Loads the library and hands it the callback's address. False, with the reason in `error`, when that fails.
  bool Load(const std::filesystem::path& path, std::string& error);

  /// Calls an entry point of the form int(void), as Excel does: xlAutoOpen, xlAutoClose, xlAutoRemove. What it returns,
  /// or nothing when the library does not export it.
  std::optional<int> CallEntryPoint(const char* name, const EvaluationContext& context);

  /// Unloads the library, forgets what it registered and closes the account of the loans. What is out of balance goes
  /// to the complaints, and so does a library that the system keeps mapped.
  void Unload();

  bool IsLoaded() const { return library_ != nullptr; }

  const AddinFunction* Find(XStringView name) const override;
  /// The command of that name, in any case; null when there is none. Call runs it as Excel runs a macro.
  const AddinFunction* FindCommand(XStringView name) const;
  /// Calls on this thread what is thread-safe, on the main thread what is not.
  Value Call(const AddinFunction& function, std::span<const Value> operands, const EvaluationContext& context) override;

  /// Calls a function `count` times with arguments that are laid out once.
  Timing Time(const RegisteredFunction& function, std::span<const Value> operands, int count,
              const EvaluationContext& context);

 private:
  /// The function by the entry point that the settings ask for.
  const RegisteredFunction& ByInterface(const RegisteredFunction& function) const;
  Value CallHere(const RegisteredFunction& function, std::span<const Value> operands, const EvaluationContext& context);
  /// Whether threads that were not there before still run in the library; they go to the complaints.
  bool HasLeftThreads();
  Value TakeResult(const RegisteredFunction& function, std::uintptr_t word, const Arguments& arguments,
                   CallContext& frame);

  HostState& host_;
  const XlMdCallBack12 callback_;
  std::unique_ptr<Library> callLibrary_;
  std::unique_ptr<Library> library_;
  std::set<std::uint64_t> threadsBefore_;
  ReturnedValues returnedValues_;
  ArgumentCache argumentCache_;
};

}  // namespace qcalc
