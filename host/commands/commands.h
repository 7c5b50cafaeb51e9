// The program's subcommands. Each gives its exit status; AddinFailure is thrown where the add-in is none.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/commands/exit_status.h"
#include "host/scripts/session.h"

namespace qcalc {

/// Evaluates formulas and prints each result as a literal.
ExitStatus RunEval(const std::filesystem::path& addin, const std::vector<std::string>& formulas);

/// Runs scripts, each with the add-in loaded anew; "-" is standard input. An add-in that is none ends but its script.
ExitStatus RunScripts(const std::filesystem::path& addin, const std::vector<std::string>& names);

/// Lists what the add-in registered: with a name all about that function, else a line for each.
ExitStatus ListFunctions(const std::filesystem::path& addin, const std::string& name);

/// Prints to standard error what the add-in did against the rules; whether there was anything.
bool PrintComplaints(Session& session);

}  // namespace qcalc
