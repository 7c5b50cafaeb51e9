// Calls every function that the add-in registers with everything that can be wrong with a call. Nothing is listed here:
// what is declared later is covered by itself.
#include <iostream>

#include "findings.h"
#include "tests/addin_program.h"

namespace qcalc::fault {
namespace {

int RunTests(const std::filesystem::path& addin, const std::string& examples, const SuiteSettings& settings) {
  TellLastWords();
  NoteLastWords(0, "opening the add-in and its plain calls");
  Session session(addin);
  session.Open();
  CallValues values(session);
  if (!examples.empty()) values.ReadExamples(examples);
  TrialRunner runner(session, values);
  NoteLastWords(0, "");
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
  return qcalc::fault::RunProgram(qcalc::ProgramArguments(count, arguments));
}
