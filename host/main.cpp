// qcalc: the headless calculator.
#include <iostream>

#include "host/commands/command_line.h"
#include "host/process/checked_output.h"
#include "host/process/console.h"

namespace qcalc {
namespace {

ExitStatus RunProgram(std::vector<std::string> arguments) {
  const auto read = ReadCommandLine(std::move(arguments));
  if (const auto* status = std::get_if<ExitStatus>(&read)) {
    std::cout.flush();
    return *status;
  }
  const auto& line = std::get<CommandLine>(read);
  switch (line.command) {
    case CommandLine::Command::kEval:
      return Supervise(EvalWork(line.addin, line.eval), line.isInProcess);
    case CommandLine::Command::kRun:
      return Supervise(ScriptWork(line.addin, line.scripts), line.isInProcess);
    case CommandLine::Command::kCalc:
      return Supervise(CalcWork(line.addin, line.calc), line.isInProcess);
    case CommandLine::Command::kFunctions:
      break;
  }
  return Supervise(FunctionsWork(line.addin, line.function), line.isInProcess);
}

}  // namespace
}  // namespace qcalc

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  const qcalc::CheckedOutput output;
  return qcalc::StatusOf([&] { return qcalc::RunProgram(qcalc::ProgramArguments(count, arguments)); });
}
