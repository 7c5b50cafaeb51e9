#include "host/scripts/parser.h"

#include "host/text/near_names.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

template <typename Visitor>
void VisitCommands(Visitor&& visit) {
  for (const auto& group : {SettingCommands(), EvaluationCommands(), ExpectationCommands(), FaultCommands(),
                            ObjectCommands(), DialogCommands()})
    for (const ScriptCommandForm& form : group) visit(form);
}

const ScriptCommandForm& FindCommand(const ScriptLine& line, std::string_view name) {
  const ScriptCommandForm* found = nullptr;
  std::vector<std::string> names;
  VisitCommands([&](const ScriptCommandForm& form) {
    if (form.name == name) found = &form;
    names.emplace_back(form.name);
  });
  if (found) return *found;
  const std::string hint = NearNamesHint(name, names);
  line.FailIn(name, "expected a command, found '" + std::string(name) + "'" +
                        (hint.empty() ? "; qcalc help scripts lists them" : hint));
}

ScriptCommand ParseLine(ScriptLine& line) {
  const std::string_view name = line.Word("a command");
  const ScriptCommandForm& form = FindCommand(line, name);
  try {
    ScriptCommand command{line.Number(), form.parse(line)};
    line.End();
    return command;
  } catch (SyntaxError& error) {
    error.message += "; the form is: " + std::string(form.form);
    throw;
  }
}

/// The next line of the text, which loses it; without its line break.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

SyntaxError NotUtf8(std::string_view text, std::size_t badByte) {
  const std::string_view before = text.substr(0, badByte);
  SyntaxError error{1, 1, "expected UTF-8, found a byte that is none"};
  for (const char byte : before) {
    error.column = byte == '\n' ? 1 : error.column + 1;
    error.line += byte == '\n';
  }
  return error;
}

}  // namespace

std::vector<std::string> CommandForms() {
  std::vector<std::string> forms;
  VisitCommands([&](const ScriptCommandForm& form) { forms.emplace_back(form.form); });
  return forms;
}

Parsed<std::vector<ScriptCommand>> ParseScript(std::string_view text) {
  std::size_t badByte = 0;
  if (!FromUtf8(text, &badByte)) return NotUtf8(text, badByte);
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  std::vector<ScriptCommand> commands;
  int number = 0;
  try {
    while (!text.empty()) {
      std::string_view piece = TakeLine(text);
      ++number;
      if (piece.starts_with('#')) continue;
      ScriptLine line;
      while (piece.ends_with('\\') && !text.empty()) {
        piece.remove_suffix(1);
        line.Append(piece, number);
        piece = TakeLine(text);
        ++number;
      }
      line.Append(piece, number);
      if (!line.IsAtEnd()) commands.push_back(ParseLine(line));
    }
  } catch (SyntaxError& error) {
    return std::move(error);
  }
  return commands;
}

}  // namespace qcalc
