// Scripts: commands with what they do, read before any of them runs.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/scripts/line.h"

namespace qcalc {

class ScriptRunner;

/// What a command does when the script runs.
using ScriptAction = std::function<void(ScriptRunner&)>;

/// A command of the language: its name, the form it is written in, and how the rest of its line is read.
struct ScriptCommandForm {
  std::string_view name;
  std::string_view form;
  ScriptAction (*parse)(ScriptLine& line);
};

/// The commands, in six groups: the workbook and the host's settings, evaluations, expectations, what goes wrong on
/// purpose, what there is beside the C API, and dialogs.
std::span<const ScriptCommandForm> SettingCommands();
std::span<const ScriptCommandForm> EvaluationCommands();
std::span<const ScriptCommandForm> ExpectationCommands();
std::span<const ScriptCommandForm> FaultCommands();
std::span<const ScriptCommandForm> ObjectCommands();
std::span<const ScriptCommandForm> DialogCommands();

/// The forms of all commands, in the order of the groups.
std::vector<std::string> CommandForms();

struct ScriptCommand {
  int line = 0;
  ScriptAction action;
};

/// Reads a whole script, UTF-8. Comments begin with "#", a line that ends in "\" goes on in the next one.
Parsed<std::vector<ScriptCommand>> ParseScript(std::string_view text);

}  // namespace qcalc
