// What the program is asked to do, and the forms of what it prints.
#include "host/commands/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/commands/function_list.h"
#include "host/values/literal.h"
#include "tests/host/case_table.h"

namespace qcalc {
namespace {

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t end = 0; !text.empty(); text.remove_prefix(std::min(end + 1, text.size())))
    if (end = std::min(text.find(' '), text.size()); end > 0) words.emplace_back(text.substr(0, end));
  return words;
}

TEST(CommandLine, MistakesNameTheWordAndNearOnes) {
  for (const auto& [words, told] : CasesOf(R"(
      evl =1 -> no command 'evl'; near names: eval | eval =1 --formt csv -> no option '--formt'; near names: --format
      functions A B -> functions takes no further argument, found 'B' | help evl -> 'evl'; near names: eval
      eval =1 --format jsn -> no format 'jsn', but literal, csv and json; near names: json | run -> expected a script
      eval =1 --load Data -> --load 'Data': expected SHEET=FILE | eval -> expected a formula | --adin x run y -> --addin)")) {
    ::testing::internal::CaptureStderr();
    const auto read = ReadCommandLine(Words(words));
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::HasSubstr(told)) << words;
    EXPECT_EQ(std::get<ExitStatus>(read), kUnusable);
  }
}

TEST(CommandLine, ReadsWhatEvalIsAskedFor) {
  const auto read = ReadCommandLine(
      {"eval", "=1", "--load", "Data=my file.csv text A", "--load", "B=b", "--format", "csv", "=2", "--addin", "x"});
  const auto& line = std::get<CommandLine>(read);
  EXPECT_THAT(line.eval.formulas, ::testing::ElementsAre("=1", "=2"));
  ASSERT_EQ(line.eval.loads.size(), 2u);
  EXPECT_EQ(line.eval.loads[0].sheet + "=" + line.eval.loads[0].file.path, "Data=my file.csv");
  EXPECT_EQ(line.eval.format, ResultFormat::kCsv);
  EXPECT_EQ(line.addin, "x");
}

TEST(Results, AsCsvAndJson) {
  const auto check = [](const std::string& literal, const std::string& csv, const std::string& json) {
    EXPECT_EQ(FormatResult(*ParseLiteral(literal), ResultFormat::kCsv), csv);
    EXPECT_EQ(FormatResult(*ParseLiteral(literal), ResultFormat::kJson), json);
  };
  check(R"({empty,"a,b";"say ""x""",#N/A;TRUE,""})", ",\"a,b\"\n\"say \"\"x\"\"\",#N/A\nTRUE,\"\"\n",
        "[[null,\"a,b\"],[\"say \\\"x\\\"\",{\"error\":\"#N/A\"}],[true,\"\"]]\n");
  check("{empty;0.1;1048576}", "\n0.1\n1048576\n", "[[null],[0.1],[1048576]]\n");
  check("\"\"U+D83DU+000A\"\u6F22\"", "\"\uFFFD\n\u6F22\"\n", "\"\uFFFD\\n\u6F22\"\n");
}

TEST(Functions, StandByFamiliesAndRunsOfArgumentsAreCut) {
  const auto function = [](XStringView name, XStringView names, XStringView topic, int macroType) {
    RegisteredFunction made;
    made.name = name;
    made.argumentNames = names;
    made.category = XTEXT("Cat");
    made.helpTopic = topic;
    made.macroType = macroType;
    return made;
  };
  const RegisteredFunction all[] = {function(XTEXT("CMD"), {}, {}, 2),
                                    function(XTEXT("B"), XTEXT("X, A1,A2,A3"), XTEXT("f!1101"), 1),
                                    function(XTEXT("H"), {}, {}, 0), function(XTEXT("A"), {}, XTEXT("f!201"), 1),
                                    function(XTEXT("C"), XTEXT("P9,P10,P11,P12,Q"), XTEXT("f!1100"), 1)};
  std::vector<const RegisteredFunction*> given;
  for (const RegisteredFunction& one : all) given.push_back(&one);
  const FunctionPages pages{{XTEXT("b"), {"sort", {}, "", "", ""}}, {XTEXT("c"), {"sort", {}, "", "", ""}}};
  EXPECT_EQ(ListByFamily(given, pages),
            "Cat:\nA()\n\nFamily sort:\nC(P9, ..., P12, Q)\nB(X, A1, A2, A3)\n\n"
            "Hidden functions:\nH()\n\nCommands:\nCMD()\n");
}

}  // namespace
}  // namespace qcalc
