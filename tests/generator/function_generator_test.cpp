// The generator of the functions' code: what it makes of a table, and that every mistake is found, with its line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "functions/generator/generated_code.h"
#include "functions/generator/table_checks.h"
#include "functions/generator/table_reader.h"
#include "tests/host/case_table.h"

namespace quillmere::generator {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// A table that holds each thing a table can hold, and no mistake.
constexpr std::string_view kTable = R"toml(
setting = [
  { name = "mode", type = "Mode", values = ["First", "All"] },
  { name = "caseSensitive", type = "bool" },
  { name = "position", type = "int" },
  { name = "ownName", type = "name" },
]
implementation = [
  { name = "Search", settings = ["mode", "caseSensitive", "position", "ownName"] },
  { name = "Tell" },
]

[family]
title = "Finding"
introduction = "Finds."
help_ids = [100, 199]

[argument.MA_Method]
kind = "Int"
help = "How"
default = "1"
by_value = true
flags = 32
choices = [{ code = 1, text = "One" }, { code = 2, text = "Zwölf" }]

[[function]]
name = "FIND.FIRST"
implementation = "Search"
settings = { mode = "First", caseSensitive = false, position = -3 }
arguments = ["Lookup_Values", "MA_Method", { name = "Name", kind = "String", help = "", default = '"a"' }, "Pairs", "Last"]
marks = ["thread-safe", "framework-32"]
category = 5
help_id = 100
interfaces = [12, 4]
description = "Finds, first"
long_text = "Long."
example = { formula = "=FIND.FIRST(1)", result = "1" }
related = ["Case.FIND"]

[[function]]
name = "FIND.ALL"
type = "hidden"
implementation = "Search"
settings = { mode = "All", caseSensitive = true, position = 0 }
arguments = ["Lookup_Values", "Other", { name = "Name", kind = "String", help = "", default = '"b"' }, "Pairs", "Last"]
marks = []
description = "Finds"
long_text = "Long."
example = { formula = "=FIND.ALL(1)", result = "2" }
related = ["FIND.FIRST" ]

[[function]]
name = "TellCommand"
type = "command"
implementation = "Tell"
arguments = []
marks = ["framework-2"]
category = 14
description = "Tells"
long_text = "Long."

[[function]]
name = "Case.FIND"
like = "FIND.FIRST"
settings = { caseSensitive = true }
arguments = [
  { name = "Return", kind = "Value", required = true, help = "" },
  { name = "Volatile", kind = "Value", default = "-1", only = true, help = "", choices = [{ code = -1, text = "No" }] },
  { name = "Error", kind = "Value", default = "#N/A", help = "" },
  "Pairs",
  "Last",
]
help_id = 101
long_text = "Long."
example = { formula = "=Case.FIND(1)", result = "1" }
related = ["FIND.FIRST"]

[argument]
Lookup_Values = { kind = "Value", help = "What to find" }
Other = { like = "MA_Method", name = "Other_Method", default = "2" }
Last = { kind = "Value", help = 'A \ "quoted"' }
Pairs = { repeat = 3, helped = 1, each = [
  { name = "Col{}", kind = "Reference", help = "Where" },
  { name = "Crit{}", kind = "Value", help = "What" },
] }
)toml";

struct Outcome {
  Diagnostics diagnostics;
  std::map<std::string, std::string> files;
};

Outcome Generate(const std::vector<std::pair<std::string, std::string>>& tables) {
  Outcome outcome;
  std::vector<Family> families;
  for (const auto& [path, text] : tables) families.push_back(ReadFamily(path, text, outcome.diagnostics));
  if (outcome.diagnostics.All().empty()) CheckTables(families, outcome.diagnostics);
  if (!outcome.diagnostics.All().empty()) return outcome;
  for (GeneratedFile& file : GenerateCode(families)) outcome.files[file.name] = std::move(file.text);
  return outcome;
}

int LineOf(std::string_view text, std::size_t at) {
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

/// The table with `old` replaced, which stands there once.
std::string Changed(std::string_view old, std::string_view with) {
  std::string table(kTable);
  const std::size_t at = table.find(old);
  EXPECT_NE(at, std::string::npos) << old;
  EXPECT_EQ(table.find(old, at + 1), std::string::npos) << old << " stands twice";
  return table.replace(at, old.size(), with);
}

TEST(FunctionGenerator, WritesWhatDiffersInShape) {
  Outcome outcome = Generate({{"any/where/sample.toml", std::string(kTable)}});
  ASSERT_EQ(outcome.diagnostics.Text(), "");
  const std::string entry =
      "#line " + std::to_string(LineOf(kTable, kTable.find("[[function]]"))) + " \"src/functions/sample.toml\"\n";
  EXPECT_THAT(outcome.files["implementations/sample.h"], HasSubstr("struct Functions {\n" + entry));

  const std::string& exports = outcome.files["exports.cpp"];
  EXPECT_THAT(
      exports,
      HasSubstr("{ sample::Functions::Search(result, sample::Mode::kFirst, false, -3, FIND_FIRSTDeclaration.name, "));
  EXPECT_THAT(exports, HasSubstr("CXlArgumentRun<6>(arguments + 3, FIND_FIRSTArguments + 3), "
                                 "CXlArgument(arguments[9], FIND_FIRSTArguments[9])); }"));
  EXPECT_THAT(
      exports,
      HasSubstr("{ sample::Functions::Search(result, sample::Mode::kFirst, true, -3, Case_FINDDeclaration.name, "));
  EXPECT_THAT(exports, HasSubstr("XLOPER* FIND_FIRST_4(Parameter4<ArgumentKind::kValue, false, false> a0, "
                                 "Parameter4<ArgumentKind::kInt, true, true> a1, "));
  EXPECT_THAT(exports, Not(HasSubstr("FIND_ALL_4")));
  EXPECT_THAT(exports, HasSubstr("XLOPER12* TellCommand_12() { return CallFunction12(TellCommandBody); }"));

  const std::string& records = outcome.files["declarations.h"];
  EXPECT_THAT(records, HasSubstr(R"({{1, XTEXT("One")}, {2, XTEXT("Zw\u00F6lf")}, };)"));
  EXPECT_THAT(records, HasSubstr(R"(.help = XTEXT("A \\ \"quoted\""))"));
  EXPECT_THAT(records, HasSubstr(R"({.name = XTEXT("Other_Method"), .kind = ArgumentKind::kInt, .flags = 32, )"
                                 R"(.defaultText = XTEXT("2"), .defaultValue = {.type = xltypeNum, .number = 2}, )"
                                 R"(.byValue = true, .required = false, .help = XTEXT("How"))"));
  EXPECT_THAT(records, HasSubstr(R"(.defaultValue = {.type = xltypeStr, .text = XTEXT("b")})"));
  EXPECT_THAT(records, HasSubstr(R"(.defaultValue = {.type = xltypeErr, .number = 42})"));
  EXPECT_THAT(records, HasSubstr(".allowedCodes = Case_FINDCodes1}"));
  EXPECT_THAT(records, HasSubstr(".macroType = MacroType::kHidden, .category = 0, .flags = 0, .interfaces = 2,"));
  EXPECT_THAT(outcome.files["examples.calc"], Not(HasSubstr("Tell")));
}

/// Mistakes in the table: what is changed, into what, and what the diagnostic says. Its line is
/// that of the change, or so far from it as the message begins with.
constexpr std::string_view kMistakes = R"cases(
    category = 14 => categry = 14 -> unknown key 'categry' in [[function]]
    name = "FIND.ALL" => name = "XFD1048576" -> Excel takes no function of the name 'XFD1048576'
    name = "FIND.ALL" => name = "R1C1" -> Excel takes no function of the name
    type = "hidden" => type = "secret" -> 'secret' is no type
    marks = [] => marks = ["thread-safe", "macro-sheet"] -> Excel takes no function that is both
    marks = [] => marks = ["quick"] -> 'quick' is no mark
    marks = ["framework-2"] => marks = ["volatile"] -> thread-safe, volatile and macro-sheet are marks
    category = 14 => category = 6 -> 6 is no category
    category = 14 => category = "14" -> 'category' in [[function]] is not a whole number
    help_id = 100 => -> -7 [[function]] has no 'help_id'
    interfaces = [12, 4] => interfaces = [4] -> interfaces are [12] or [12, 4]
    description = "Tells" => description = "" -> description is empty
    description = "Tells" => description = "Tells\u001F" -> description holds U+001F
    description = "Tells" => description = "Tells\u0080" -> description holds U+0080
    example = { formula = "=FIND.ALL(1)", result = "2" } => -> -9 [[function]] has no 'example'
    related = ["FIND.FIRST" ] => related = ["FIND.ALL"] -> -10 'FIND.ALL', related to 'FIND.ALL', has no page
    related = ["FIND.FIRST" ] => related = ["FIND.FIRST", "FIND.FIRST"] -> -10 'FIND.FIRST' stands twice on the page of 'FIND.ALL'
    related = ["Case.FIND"] => -> -12 [[function]] has no 'related'
    formula = "=FIND.ALL(1)" => formula = "=OTHER(1)" -> the example is no formula that calls FIND.ALL
    , result = "2" => -> an example has no 'result'
    help_ids = [100, 199] => help_ids = [100, 199 -> +2 Error while parsing array
    kind = "Int" => kind = "Whole" -> 'Whole' is no kind of argument
    default = "1" => default = "1.5" -> the default '1.5' of 'MA_Method' does not read as its kind
    default = '"b"' => default = 'b' -> the default 'b' of 'Name' does not read as its kind
    default = "1" => -> +1 by_value is for an Int with a default: 'MA_Method' is none
    { code = 2, text => { code = 1, text -> choice 1 stands twice
    required = true => required = true, default = "1" -> 'Return' is required and has a default
    default = '"a"' => required = true -> 'Name' comes as a plain value, which is never left out
    default = "-1" => default = "0" -> the default '0' of 'Volatile' is none of its codes
    , choices = [{ code = -1, text = "No" }] => , codes = [1] -> only is for an Int, Short or Value with choices: 'Volatile' is none
    only = true => codes = [-1] -> codes are for an Int, Short or Value without choices: 'Volatile' is none
    , choices = [{ code = -1, text = "No" }] => -> only is for an Int, Short or Value with choices: 'Volatile' is none
    helped = 1, each = [ => required = 1, each = [{ name = "A{}", kind = "Value", default = "1", help = "" }, -> 'A{}' has a default and need not be given
    like = "MA_Method" => like = "Pairs" -> no single argument 'Pairs' stands above
    name = "Other_Method" => name = "Other Method" -> 'Other Method' cannot name an argument
    name = "Col{}" => name = "Col" -> 'Col' is repeated and has no {}
    name = "Other_Method" => name = "lookup_values" -> -40 'FIND.ALL' has two arguments 'lookup_values'
    helped = 1 => helped = 4 -> 'helped' in a run of arguments is not a whole number from 0 to 3
    "Other", { => "Another", { -> no [argument.Another] stands in this table
    "Other", { => "MA_Method", { -> +35 no function takes the argument 'Other_Method'
    repeat = 3 => repeat = 32 -> -56 the argument names of 'FIND.FIRST' have
    repeat = 3 => repeat = 130 -> -56 'FIND.FIRST' has 264 arguments; Excel takes 255
    repeat = 3, helped = 1 => repeat = 122 -> -56 'FIND.FIRST' has 249 argument help texts
    repeat = 3 => repeat = 14 -> -56 'FIND.FIRST' has 32 arguments; an 8-bit entry point takes 30
    , values = ["First", "All"] => -> an enumeration lists its values
    settings = ["mode", => settings = ["mood", -> no [[setting]] 'mood' stands in this table
    "caseSensitive", "position", => "caseSensitive", -> +20 'Search' takes no setting 'position'
    like = "FIND.FIRST" => like = "FIND.LAST" -> no function 'FIND.LAST' stands above
    mode = "All", => -> 'FIND.ALL' gives no setting 'mode'
    mode = "All" => mode = "None" -> the setting 'mode' is no Mode
    position = 0 => position = 3000000000 -> the setting 'position' is no int
    position = 0 => position = 0, ownName = "A" -> the setting 'ownName' is the name of 'FIND.ALL'
    implementation = "Tell" => implementation = "Say" -> no [[implementation]] 'Say' stands in this table
    { name = "Tell" } => { name = "Tell" }, { name = "Mute" } -> no function uses the implementation 'Mute'
    "Lookup_Values", "Other" => "Other" -> -5 'Search' takes an argument, an argument, an argument, a run of 6, an argument in 'FIND.FIRST' (sample.toml:)cases";

TEST(FunctionGenerator, FindsEveryMistakeWithItsLine) {
  for (const auto& [change, told] : qcalc::CasesOf(kMistakes)) {
    const std::size_t arrow = change.find(" =>");
    const std::string old = change.substr(0, arrow), with = change.substr(std::min(arrow + 4, change.size()));
    const bool isElsewhere = told[0] == '+' || told[0] == '-';
    const int line = LineOf(kTable, kTable.find(old)) + (isElsewhere ? std::stoi(told) : 0);
    const std::string message = isElsewhere ? told.substr(told.find(' ') + 1) : told;
    EXPECT_THAT(Generate({{"sample.toml", Changed(old, with)}}).diagnostics.Text(),
                HasSubstr("sample.toml:" + std::to_string(line) + ": error: " + message))
        << change;
  }
}

TEST(FunctionGenerator, LongArgumentHelpIsRefused) {
  const std::string longest(255, 'x');
  EXPECT_EQ(Generate({{"sample.toml", Changed("\"What to find\"", "\"" + longest + "\"")}}).diagnostics.Text(), "");
  EXPECT_THAT(Generate({{"sample.toml", Changed("\"What to find\"", "\"" + longest + "x\"")}}).diagnostics.Text(),
              HasSubstr("the help text of 'Lookup_Values' has 256 characters; Excel takes 255"));
}

TEST(FunctionGenerator, FamiliesMayNotMeet) {
  const std::string same(kTable);
  const std::string text = Generate({{"one.toml", same}, {"two.toml", same}}).diagnostics.Text();
  for (const char* message :
       {"the name 'FIND.ALL' is taken: one.toml:", "the help id '100' is taken: one.toml:",
        "the enumeration 'Mode' is taken", "two.toml:13: error: the help ids meet those of one.toml"}) {
    EXPECT_THAT(text, HasSubstr(message));
  }
  for (const auto& [name, message] : {std::pair("FIND_FIRST", "the export name 'FIND_FIRST' is taken"),
                                      {"Find.First", "the name 'Find.First' is taken"}}) {
    std::string twin = Changed("name = \"FIND.ALL\"", "name = \"" + std::string(name) + "\"");
    twin.replace(twin.find("=FIND.ALL("), 9, "=" + std::string(name));
    EXPECT_THAT(Generate({{"one.toml", twin}}).diagnostics.Text(), HasSubstr(message));
  }
  EXPECT_THAT(Generate({{"one.toml", Changed("help_id = 100", "help_id = 200")}}).diagnostics.Text(),
              HasSubstr("the help id 200 of 'FIND.FIRST' lies outside the family's, 100 to 199"));
}

}  // namespace
}  // namespace quillmere::generator
