// Calls every function that the add-in registers with everything that can be wrong with a call. Nothing is listed here:
// what is declared later is covered by itself.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "findings.h"
#include "host/console.h"

namespace qcalc::fault {
namespace {

enum : int { kFailed = 1, kUnusable = 2, kNoAddin = 3 };

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
  const int status = RUN_ALL_TESTS();
  session.Finish();
  const std::vector<std::string> complaints = session.ItsAddin().complaints.Take();
  for (const std::string& text : complaints) std::cout << "at the end: " << text << std::endl;
  return complaints.empty() ? status : kFailed;
}

int RunProgram(std::vector<std::string> arguments) {
  // GoogleTest takes its own flags out of a list that ends as main's does.
  std::vector<char*> pointers;
  std::string program = "fault_tests";
  pointers.push_back(program.data());
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  testing::InitGoogleTest(&count, pointers.data());
  arguments.assign(pointers.begin() + 1, pointers.begin() + count);

  CLI::App app("Calls the add-in's functions with everything that can be wrong with a call.", program);
  app.allow_windows_style_options(false);
  SuiteSettings settings;
  std::string addin, examples;
  app.add_option("--addin", addin, "the add-in to load; by default the one beside the program");
  app.add_option("--examples", examples, "a script with `eval` lines: the functions' own examples");
  app.add_option("--seed", settings.seed, "what all random choices follow from");
  app.add_option("--only", settings.only, "the trial of that number alone, of each test that --gtest_filter leaves");
  app.add_option("--trials", settings.trials, "trials of each kind, shared among the functions");
  app.add_option("--draws", settings.draws, "random calls on one thread");
  app.add_option("--rounds", settings.rounds, "rounds of random calls on all threads");
  app.add_option("--seconds", settings.seconds, "seconds of random calls of each kind, in place of their number");
  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
    return RunTests(addin.empty() ? ProgramFolder() / "Quillmere4.xll" : std::filesystem::path(addin), examples,
                    settings);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUnusable;
  } catch (const AddinFailure& failure) {
    std::cerr << failure.what() << std::endl;
    return kNoAddin;
  } catch (const std::runtime_error& error) {
    std::cerr << error.what() << std::endl;
    return kUnusable;
  }
}

}  // namespace
}  // namespace qcalc::fault

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  return qcalc::fault::RunProgram(qcalc::ProgramArguments(count, arguments));
}
