// What a call into the add-in must leave as it found it.
#pragma once

#include <filesystem>
#include <string>

#include "host/addin/application_state.h"
#include "host/api/complaints.h"
#include "host/library/processor_state.h"

namespace qcalc {

/// Around one call on this thread: tells when it has changed how the processor calculates, and puts it back. The name
/// of who is called outlives this.
class ProcessorGuard {
 public:
  ProcessorGuard(Complaints& complaints, const std::string& who) : complaints_(complaints), who_(who) {}
  ~ProcessorGuard();
  ProcessorGuard(const ProcessorGuard&) = delete;
  ProcessorGuard& operator=(const ProcessorGuard&) = delete;

 private:
  Complaints& complaints_;
  const std::string& who_;
  const ProcessorState before_ = ProcessorState::Current();
};

/// The same for the current folder, which all threads share. It asks the system: too slow for calls that are timed.
class FolderGuard {
 public:
  FolderGuard(Complaints& complaints, const std::string& who) : complaints_(complaints), who_(who) {}
  ~FolderGuard();
  FolderGuard(const FolderGuard&) = delete;
  FolderGuard& operator=(const FolderGuard&) = delete;

 private:
  Complaints& complaints_;
  const std::string& who_;
  std::error_code error_;
  const std::filesystem::path before_ = std::filesystem::current_path(error_);
};

/// The same for what a command may change of Excel while it runs: Excel turns echo and alerts on when it ends, and what
/// relied on that is told.
class ScreenGuard {
 public:
  ScreenGuard(Complaints& complaints, ApplicationState& application, const std::string& who)
      : complaints_(complaints), application_(application), who_(who) {}
  ~ScreenGuard();
  ScreenGuard(const ScreenGuard&) = delete;
  ScreenGuard& operator=(const ScreenGuard&) = delete;

 private:
  Complaints& complaints_;
  ApplicationState& application_;
  const std::string& who_;
  const bool showedAlerts_ = application_.ShowsAlerts();
};

}  // namespace qcalc
