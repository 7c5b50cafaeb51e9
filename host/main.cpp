// qcalc: the headless calculator.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "host/commands/commands.h"
#include "host/process/checked_output.h"
#include "host/process/console.h"
#include "host/text/path_text.h"

namespace qcalc {
namespace {

ExitStatus RunProgram(std::vector<std::string> arguments) {
  CLI::App app("qcalc, the headless calculator: runs the add-in where there is no Excel.", "qcalc");
  app.set_version_flag("--version", "qcalc 4.0");
  app.allow_windows_style_options(false);  // a path may begin with "/" on every build
  app.require_subcommand(1);
  std::string addinPath;
  app.add_option("--addin", addinPath, "the add-in to load; by default the one beside the program");
  bool isInProcess = false;
  app.add_flag("--in-process", isInProcess, "work in this process, for a debugger: an add-in that dies ends it untold");

  std::vector<std::string> formulas, scripts;
  std::string function;
  CLI::App* eval = app.add_subcommand("eval", "evaluate each formula and print its result as a literal");
  eval->add_option("FORMULA", formulas, "formulas, as in a cell")->required();
  CLI::App* run = app.add_subcommand("run", "run scripts; '-' is standard input");
  run->add_option("SCRIPT", scripts, "script files")->required();
  CLI::App* functions = app.add_subcommand("functions", "list what the add-in registered");
  functions->add_option("NAME", function, "one function, with its marks and help texts");

  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    const bool isHelp = app.exit(error) == 0;
    std::cout.flush();
    return isHelp ? kAllWell : kUnusable;
  }
  const std::filesystem::path addin = addinPath.empty() ? ProgramFolder() / "Quillmere4.xll" : PathOf(addinPath);
  if (eval->parsed()) return Supervise(EvalWork(addin, formulas), isInProcess);
  if (run->parsed()) return Supervise(ScriptWork(addin, scripts), isInProcess);
  return Supervise(FunctionsWork(addin, function), isInProcess);
}

}  // namespace
}  // namespace qcalc

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  const qcalc::CheckedOutput output;
  return qcalc::StatusOf([&] { return qcalc::RunProgram(qcalc::ProgramArguments(count, arguments)); });
}
