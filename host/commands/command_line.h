// What the program is asked to do.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "host/commands/commands.h"

namespace qcalc {

struct CommandLine {
  enum class Command { kEval, kRun, kCalc, kFunctions };

  Command command = Command::kEval;
  std::filesystem::path addin;
  bool isInProcess = false;  ///< not in a process of its own
  EvalRequest eval;
  std::vector<std::string> scripts;
  CalcRequest calc;
  std::string function;  ///< empty for all
};

/// Reads the arguments, UTF-8, without the program's own name; or prints what was asked for (help, the version) or what
/// is wrong with them, and gives the program's status.
std::variant<CommandLine, ExitStatus> ReadCommandLine(std::vector<std::string> arguments);

}  // namespace qcalc
