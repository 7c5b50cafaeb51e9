// Holds the add-in's functions against models of their rules: random calls, each made through the add-in's exports and
// worked out by the model, must give the same.
#include <iostream>

#include "tests/addin_program.h"
#include "tests/models/random_calls.h"

namespace qcalc::models {
namespace {

int RunTests(const std::filesystem::path& addin, const RunSettings& settings) {
  Session session(addin);
  session.Open();
  Caller caller(session);
  const Run run{settings, caller};
  BeginRun(run);
  std::cout << "seed " << settings.seed << std::endl;
  return RunTestsAndFinish(session);
}

int RunProgram(const std::vector<std::string>& arguments) {
  RunSettings settings;
  const auto addOptions = [&](CLI::App& app) {
    app.add_option("--seed", settings.seed, "what all random choices follow from");
    app.add_option("--cases", settings.cases, "calls of each test");
    app.add_option("--seconds", settings.seconds, "seconds of calls of each test, in place of their number");
  };
  return RunAddinProgram("model_tests", "Holds the add-in's functions against models of their rules.", arguments,
                         addOptions, [&](const std::filesystem::path& addin) { return RunTests(addin, settings); });
}

}  // namespace
}  // namespace qcalc::models

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  return qcalc::models::RunProgram(qcalc::ProgramArguments(count, arguments));
}
