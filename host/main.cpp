// qcalc: the headless calculator.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/console.h"
#include "host/function_list.h"
#include "host/scripts/runner.h"
#include "host/text/letter_case.h"
#include "host/text/path_text.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

enum : int { kAllWell = 0, kFailed = 1, kUnusable = 2, kNoAddin = 3 };

/// Prints what the add-in did against the rules; whether there was anything.
bool PrintComplaints(Session& session) {
  const std::vector<std::string> complaints = session.Host().complaints.Take();
  for (const std::string& text : complaints) std::cerr << text << std::endl;
  return !complaints.empty();
}

/// Evaluates one formula and prints its result. False, with the reason printed, when it cannot be evaluated.
bool PrintResult(Session& session, const Formula& formula) {
  try {
    const Value result = session.Contents(session.Evaluate(formula));
    std::cout << PrintLiteral(result) << std::endl;
    return !PrintComplaints(session);
  } catch (const AddinFailure&) {
    throw;
  } catch (const std::exception& error) {
    std::cerr << formula.Text() << ": " << error.what() << std::endl;
  } catch (const UncalculatedCell&) {
    std::cerr << formula.Text() << ": it reads a cell that could not be calculated" << std::endl;
  }
  return false;
}

int RunEval(const std::filesystem::path& addin, const std::vector<std::string>& texts) {
  std::vector<Formula> formulas;
  for (const std::string& text : texts) {
    const Parsed<Formula> formula = ParseFormula(text);
    if (!formula) {
      std::cerr << text << ": " << formula.Error().ToString() << std::endl;
      return kUnusable;
    }
    formulas.push_back(*formula);
  }
  Session session(addin);
  bool isWell = true;
  for (const Formula& formula : formulas) isWell = PrintResult(session, formula) && isWell;
  session.Finish();
  return !PrintComplaints(session) && isWell ? kAllWell : kFailed;
}

int ListFunctions(const std::filesystem::path& addin, const std::string& name) {
  Session session(addin);
  session.Open();
  bool isFound = name.empty();
  for (const RegisteredFunction* function : session.Host().registry.All()) {
    if (name.empty()) {
      std::cout << DescribeBriefly(*function) << "\n";
    } else if (const auto units = FromUtf8(name); units && EqualsIgnoringCase(function->name, *units)) {
      std::cout << DescribeFully(*function);
      isFound = true;
    }
  }
  std::cout << std::flush;
  if (!isFound) std::cerr << "the add-in registered no function named " << name << std::endl;
  session.Finish();
  return !PrintComplaints(session) && isFound ? kAllWell : kFailed;
}

std::optional<std::string> ReadScript(const std::string& name) {
  if (name == "-") return std::string(std::istreambuf_iterator<char>(std::cin), {});
  std::ifstream file(PathOf(name), std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (!file.is_open() || file.bad()) return std::nullopt;
  return text;
}

int RunScript(const std::filesystem::path& addin, const std::string& name, Report& report) {
  const std::optional<std::string> text = ReadScript(name);
  if (!text) {
    std::cerr << name << ": the file cannot be read" << std::endl;
    return kUnusable;
  }
  const auto commands = ParseScript(*text);
  if (!commands) {
    const SyntaxError& error = commands.Error();
    std::cerr << name << ":" << error.line << ":" << error.column << ": " << error.message << std::endl;
    return kUnusable;
  }
  const std::filesystem::path folder = name == "-" ? std::filesystem::path() : PathOf(name).parent_path();
  try {
    ScriptRunner(name, folder, addin, report).Run(*commands);
  } catch (const ScriptError& error) {
    std::cerr << error.what() << std::endl;
    return kUnusable;
  } catch (const AddinFailure& failure) {
    std::cerr << name << ": " << failure.what() << std::endl;
    return kNoAddin;
  }
  return kAllWell;
}

int RunScripts(const std::filesystem::path& addin, const std::vector<std::string>& names) {
  Report report(std::cout);
  int worst = kAllWell;
  for (const std::string& name : names) worst = std::max(worst, RunScript(addin, name, report));
  report.Close();
  return std::max<int>(worst, report.Failed() > 0 ? kFailed : kAllWell);
}

int RunProgram(std::vector<std::string> arguments) {
  CLI::App app("qcalc, the headless calculator: runs the add-in where there is no Excel.", "qcalc");
  app.set_version_flag("--version", "qcalc 4.0");
  app.allow_windows_style_options(false);  // a path may begin with "/" on every build
  app.require_subcommand(1);
  std::string addinPath;
  app.add_option("--addin", addinPath, "the add-in to load; by default the one beside the program");

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
    return app.exit(error) == 0 ? kAllWell : kUnusable;
  }
  const std::filesystem::path addin = addinPath.empty() ? ProgramFolder() / "Quillmere4.xll" : PathOf(addinPath);
  try {
    if (eval->parsed()) return RunEval(addin, formulas);
    if (run->parsed()) return RunScripts(addin, scripts);
    return ListFunctions(addin, function);
  } catch (const AddinFailure& failure) {
    std::cerr << addin.string() << ": " << failure.what() << std::endl;
    return kNoAddin;
  }
}

}  // namespace
}  // namespace qcalc

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  return qcalc::RunProgram(qcalc::ProgramArguments(count, arguments));
}
