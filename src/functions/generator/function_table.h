// What the tables declare, read and checked field by field.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/registration/function_declaration.h"
#include "functions/generator/diagnostics.h"

namespace quillmere::generator {

/// A value that entries hand to an implementation: "bool", "int", "name" (their own, which they do not say) or an
/// enumeration with its words.
struct Setting {
  std::string name;
  std::string type;
  std::vector<std::string> values;
  Place place;

  bool IsOwnName() const { return type == "name"; }
};

struct Implementation {
  std::string name;
  std::vector<std::string> settings;  ///< names, in the order of the parameters
  Place place;
};

/// The words of a function's `type`.
constexpr std::array<std::pair<std::string_view, MacroType>, 3> kMacroTypes = {
    {{"function", MacroType::kFunction}, {"hidden", MacroType::kHidden}, {"command", MacroType::kCommand}}};

struct Choice {
  int code = 0;
  std::string text;
};

struct Argument {
  std::string name;  ///< within a run "{}" stands for the number of the round
  ArgumentKind kind = ArgumentKind::kValue;
  int flags = 0;
  std::optional<std::string> defaultText;
  bool byValue = false;
  bool required = false;
  bool only = false;       ///< the codes of the choices are all that is allowed
  std::vector<int> codes;  ///< all that is allowed of an argument without choices; empty: anything
  std::string help;
  std::vector<Choice> choices;

  /// Empty when nothing says which codes are.
  std::vector<int> AllowedCodes() const {
    std::vector<int> allowed = codes;
    for (const Choice& choice : choices)
      if (only) allowed.push_back(choice.code);
    return allowed;
  }
};

/// One argument, or a run of arguments that the implementation receives as one.
struct ArgumentGroup {
  std::string id;
  std::vector<Argument> each;  ///< one argument, or those of one round
  int rounds = 0;              ///< 0: a single argument
  int helped = 0;              ///< rounds whose help texts are registered
  int required = 0;            ///< rounds that every call must give
  Place place;

  bool IsRun() const { return rounds > 0; }
  int Count() const { return IsRun() ? rounds * static_cast<int>(each.size()) : 1; }
};

struct Function {
  std::string name;
  std::string implementation;
  std::vector<std::pair<std::string, std::string>> settings;  ///< name and value as C++ writes it
  std::vector<ArgumentGroup> arguments;
  MacroType type = MacroType::kFunction;
  int flags = 0;
  int category = 0;
  int helpId = 0;
  bool excel4 = false;  ///< NAME_4 is exported too
  std::string description;
  std::string longText;
  std::string exampleFormula;
  std::string exampleResult;
  std::string exampleGiven;                ///< what the workbook holds, for the reader
  std::vector<std::string> exampleBefore;  ///< the same as commands of a script
  std::vector<std::string> remarks;        ///< what surprises people, a sentence or two each
  std::vector<std::string> related;        ///< names of functions, of any family, in the order shown
  Place place;

  /// The export's name without suffix.
  std::string Procedure() const;
  /// All arguments in registered order, runs written out.
  std::vector<Argument> AllArguments() const;
};

struct Family {
  std::string name;          ///< the table's file name without ".toml"
  std::string title;         ///< for people: "Sorts and lists"
  std::string introduction;  ///< for the family's page
  std::string file;          ///< the path it was read from
  int firstHelpId = 0;
  int lastHelpId = 0;
  std::vector<Setting> settings;
  std::vector<Implementation> implementations;
  std::vector<Function> functions;
  Place place;
};

}  // namespace quillmere::generator
