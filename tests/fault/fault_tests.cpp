// Calls every function that the add-in registers with everything that can be wrong with a call. Nothing is listed here:
// what is declared later is covered by itself.
#include <iostream>

#include "findings.h"
#include "host/commands/supervisor.h"
#include "tests/addin_program.h"

namespace qcalc::fault {
namespace {

int RunTests(const std::filesystem::path& addin, const std::string& examples, const SuiteSettings& settings) {
  Session session(addin);
  session.Open();
  CallValues values(session);
  if (!examples.empty()) values.ReadExamples(examples);
  TrialRunner runner(session, values);
  RegisterFunctionSuites(runner, settings);
  RegisterRandomSuites(runner, settings);
  std::cout << "seed " << settings.seed << ", " << runner.Functions().size() << " functions" << std::endl;
  return RunTestsAndFinish(session);
}

int RunProgram(const std::vector<std::string>& arguments) {
  SuiteSettings settings;
  std::string examples;
  const auto addOptions = [&](CLI::App& app) {
    app.add_option("--examples", examples, "a script with `eval` lines: the functions' own examples");
    app.add_option("--seed", settings.seed, "what all random choices follow from");
    app.add_option("--only", settings.only, "the trial of that number alone, of each test that --gtest_filter leaves");
    app.add_option("--trials", settings.trials, "trials of each kind, shared among the functions");
    app.add_option("--draws", settings.draws, "random calls on one thread");
    app.add_option("--rounds", settings.rounds, "rounds of random calls on all threads");
    app.add_option("--seconds", settings.seconds, "seconds of random calls of each kind, in place of their number");
  };
  return RunAddinProgram("fault_tests", "Calls the add-in's functions with everything that can be wrong with a call.",
                         arguments, addOptions,
                         [&](const std::filesystem::path& addin) { return RunTests(addin, examples, settings); });
}

}  // namespace
}  // namespace qcalc::fault

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  const std::vector<std::string> given = qcalc::ProgramArguments(count, arguments);
  // In a process of their own: a call that it does not survive is known even where nothing can be checked after it.
  return qcalc::Supervise({{"the tests"},
                           [&](std::size_t) { return static_cast<qcalc::ExitStatus>(qcalc::fault::RunProgram(given)); },
                           [](qcalc::Journal&, const std::string& sentence) { std::cerr << sentence << std::endl; },
                           {}},
                          false);
}
