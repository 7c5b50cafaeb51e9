// The process that does the work: this program once more, with the same arguments, streams and folder.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/process/journal.h"

namespace qcalc {

/// How a process ended.
struct ProcessEnd {
  std::int32_t status = 0;      ///< its exit status; without meaning when it was stopped
  bool wasStopped = false;      ///< the system ended it, or a fault
  bool wasInterrupted = false;  ///< a person ended it: Ctrl+C, or the system that is shutting down
  std::string reason;           ///< in words
};

/// Starts the program once more and shares a journal with it. Processes that it starts end with this one.
class WorkerStarter {
 public:
  WorkerStarter();
  ~WorkerStarter();
  WorkerStarter(const WorkerStarter&) = delete;
  WorkerStarter& operator=(const WorkerStarter&) = delete;

  Journal& SharedJournal();
  /// Starts a worker and waits for its end; calls `wait` some times a second meanwhile. Throws std::runtime_error when
  /// the system starts none.
  ProcessEnd Run(const std::function<void()>& wait);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// In a worker, the journal that it shares with its supervisor; null in a process that was started otherwise.
Journal* InheritedJournal();

/// In the supervisor: ends this process as a worker was ended by a person.
[[noreturn]] void EndInterrupted(const ProcessEnd& end);

/// Sees that a fault ends the process at once, without a dialog or a debugger that waits for a person.
void LetFaultsEndTheProcess();

}  // namespace qcalc
