// The program's subcommands, each as work for the supervisor.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/commands/supervisor.h"
#include "host/scripts/session.h"

namespace qcalc {

/// Evaluates formulas and prints each result as a literal.
Work EvalWork(const std::filesystem::path& addin, const std::vector<std::string>& formulas);

/// Runs scripts, each with the add-in loaded anew; "-" is standard input. An add-in that is none ends but its script.
Work ScriptWork(const std::filesystem::path& addin, const std::vector<std::string>& names);

/// Lists what the add-in registered: with a name all about that function, else a line for each.
Work FunctionsWork(const std::filesystem::path& addin, const std::string& name);

/// Prints to standard error what the add-in did against the rules; whether there was anything.
bool PrintComplaints(Session& session);

/// Does `work` with that add-in; kNoAddin, with the reason told, when it is none.
ExitStatus WithAddin(const std::filesystem::path& addin, const std::function<ExitStatus(Session&)>& work);

}  // namespace qcalc
