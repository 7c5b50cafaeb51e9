// Work in a process of its own: what dies with that process is told, and the rest goes on in another.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/commands/exit_status.h"
#include "host/process/journal.h"

namespace qcalc {

/// Scripts or formulas, done one after the other. The process that works sets the journal's item.
struct Work {
  std::vector<std::string> items;  ///< as messages name them

  /// Does all from the item of that 0-based number on.
  std::function<ExitStatus(std::size_t first)> run;

  /// Tells what became of the journal's item, which the process that worked did not survive.
  std::function<void(Journal&, const std::string& sentence)> tellDeath;

  /// Takes place when all is done or has died; what the journal says goes into the status. May be empty.
  std::function<ExitStatus(Journal&)> close;
};

/// Does the work, in this process itself when `isInProcess`, which suits a debugger. The highest status of all.
ExitStatus Supervise(const Work& work, bool isInProcess);

}  // namespace qcalc
