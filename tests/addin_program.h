// What the test programs share that load the add-in in the host's place: their command lines and their end.
#pragma once

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "host/commands/exit_status.h"
#include "host/process/console.h"
#include "host/scripts/session.h"

namespace qcalc {

/// Runs all tests that are registered, then closes the session: what the host has to complain of then is a failure too.
inline int RunTestsAndFinish(Session& session) {
  const int status = RUN_ALL_TESTS();
  session.Finish();
  const std::vector<std::string> complaints = session.Host().complaints.Take();
  for (const std::string& text : complaints) std::cout << "at the end: " << text << std::endl;
  return complaints.empty() ? status : kFailed;
}

/// Reads the command line, GoogleTest's flags first, and calls `run` with the path of the add-in: that of --addin, or
/// the one beside the program. `addOptions` adds the program's own options.
template <class AddOptions, class Run>
int RunAddinProgram(const std::string& name, const std::string& purpose, std::vector<std::string> arguments,
                    AddOptions addOptions, Run run) {
  // GoogleTest takes its own flags out of a list that ends as main's does.
  std::vector<char*> pointers;
  std::string program = name;
  pointers.push_back(program.data());
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  testing::InitGoogleTest(&count, pointers.data());
  arguments.assign(pointers.begin() + 1, pointers.begin() + count);

  CLI::App app(purpose, name);
  app.allow_windows_style_options(false);
  std::string addin;
  app.add_option("--addin", addin, "the add-in to load; by default the one beside the program");
  addOptions(app);
  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
    return run(addin.empty() ? ProgramFolder() / "Quillmere4.xll" : std::filesystem::path(addin));
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

}  // namespace qcalc
