// Scripts: how they are read, what they count and print.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/scripts/runner.h"

namespace qcalc {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

struct Outcome {
  int passed;
  int failed;
  std::string printed;
};

Outcome RunText(const std::string& text) {
  const auto commands = ParseScript(text);
  if (!commands) return {-1, -1, commands.Error().ToString()};
  std::ostringstream output;
  Report report(output);
  ScriptRunner("test.calc", {}, ProgramFolder() / "misbehaving.xll", report).Run(*commands);
  return {report.Passed(), report.Failed(), output.str()};
}

TEST(ScriptReading, MistakesAreToldWithTheirPlace) {
  const std::tuple<const char*, int, int, const char*> mistakes[] = {
      {"# a comment\n\n  evall =1\n", 3, 3, "expected a command"},
      {"eval 1\n", 1, 6, "which begins with '='"},
      {"eval =1+\n", 1, 9, "expected"},
      {"eval =SUM(1,\\\n  2\n", 2, 4, "expected"},
      {"set A1 1\n", 1, 9, "expected '='"},
      {"set Q = {1,2;3}\n", 1, 5, "expected"},
      {"set A1 = {1,2;3}\n", 1, 16, ""},
      {"expect 1 2\n", 1, 10, ""},
      {"recalc 0 =1\n", 1, 8, "from 1 to"},
      {"fail xlCorce xlretFailed\n", 1, 6, "expected a callback's name"},
      {"fail xlCoerce 32\n", 1, 15, "xlretFailed"},
      {"refs sref\n", 1, 6, "expected one of SRef, Ref"},
      {"answer-with xlCoerce word\n", 1, 22, "expected a kind of value (number, text,"},
      {"mutate 1 type -2\n", 1, 15, "expected bits of a type"},
      {"mutate 2 bits 0x50g\n", 1, 15, "expected bits of a type"},
      {"mutate 1 dims 3x\n", 1, 15, "expected a size such as 3x2"},
      {"mutate 1 dims 3\n", 1, 15, "expected a size such as 3x2"},
      {"fail-alloc 1 twice\n", 1, 14, "expected one of once, on"},
      {"reload 501\n", 1, 8, "from 1 to 500"},
      {"hide A1:B2\n", 1, 6, "expected whole rows"},
      {"expect-shape 3\n", 1, 14, "such as 3x2"},
      {"let A1 = 3\n", 1, 5, "no reference"},
      {"let x y = 3\n", 1, 5, "no reference"},
      {"print 3\n", 1, 7, "expected the end of the line"},
      {"case \xFF\n", 1, 6, "UTF-8"},
  };
  for (const auto& [text, line, column, message] : mistakes) {
    const auto commands = ParseScript(text);
    ASSERT_FALSE(commands) << text;
    EXPECT_EQ(commands.Error().line, line) << text;
    EXPECT_EQ(commands.Error().column, column) << text << commands.Error().message;
    EXPECT_THAT(commands.Error().message, HasSubstr(message)) << text;
  }
  EXPECT_THAT(ParseScript("at\n").Error().message, HasSubstr("the form is: at REF"));
}

TEST(ScriptRunning, MarksLineEndsAndContinuations) {
  const Outcome outcome = RunText(
      "\xEF\xBB\xBF"
      "eval ={1,\\\r\n2}\r\nexpect {1,2}\r\n#expect 5\r\nexpect-shape \\\n1x2");
  EXPECT_EQ(outcome.passed, 2);
  EXPECT_EQ(outcome.failed, 0) << outcome.printed;
}

TEST(ScriptRunning, EveryExpectationCanFail) {
  const char* const failing[] = {
      "eval =1\nexpect 2\n",
      "eval =1\nexpect {1}\n",
      "eval =1\nexpect \"1\"\n",
      "eval =1\nexpect =1+1\n",
      "eval =0.1+0.2\nexpect 0.3000001\n",
      "eval =1\nexpect~ 1.00000001\n",
      "eval =1\nexpect-ref A1\n",
      "eval =A1\nexpect-ref A2\n",
      "eval =(A1,B2)\nexpect-ref (A1,B3)\n",
      "eval ={1,2}\nexpect-shape 2x2\n",
      "eval ={1,2}\nexpect-shape 1x3\n",
      "eval =\"#ERROR: x\"\nexpect-error-text #ERROR: y\n",
      "eval =#VALUE!\nexpect-error-text #VALUE!\n",
      "eval =SHEET.NAME()\nexpect-calls xlSheetNm 2\n",
      "udf F 1\nexpect-udf 1\n",
      "expect 1\n",
      "print\n",
      "eval =1+\"x\"\nexpect 1\n",
  };
  for (const char* script : failing) EXPECT_GE(RunText(script).failed, 1) << script;
}

TEST(ScriptRunning, WhatTheBooksSayIsAFailureToo) {
  const Outcome outcome = RunText("eval =KEEP.LENT()\nexpect 1\nset A1 = =BAD.VALUE(1)\neval =A1\nexpect #VALUE!\n");
  EXPECT_EQ(outcome.passed, 2);
  EXPECT_EQ(outcome.failed, 2) << outcome.printed;
}

TEST(ScriptRunning, EveryExpectationCanPass) {
  const Outcome outcome = RunText(
      "sheet Data\nset A1:B2 = {1,2;3,\"x\"}\nset C1 = =A1+B1\nset D1:D3 = 7\n"
      "eval =Data!A1:B2\nexpect {1,2;3,\"x\"}\nexpect-ref A1:B2\nexpect-ref Data!A1:B2\nexpect-shape 2x2\n"
      "eval =C1*2\nexpect 6\nexpect =3+3\n"
      "set A1 = 5\neval =C1\nexpect 7\n"
      "set A1:B2 = empty\neval =A1\nexpect empty\n"
      "eval =(A1,B2:C3)\nexpect-ref (Data!A1,B2:C3)\n"
      "eval =0.1+0.2\nexpect~ 0.3\n"
      "let x = ={1;2}\nlet y = 10\neval =SUM(x,Y)\nexpect 13\nlet x = 0\neval =SUM(x,y)\nexpect 10\n"
      "eval =\"#ERROR: text\"\nexpect-error-text #ERROR: t\n"
      "at Other!B2:C3\neval =SHEET.NAME()\nexpect \"[Book1]Other\"\nexpect-calls xlSheetNm 1\nexpect-calls xlFree 1\n"
      "recalc 3 =PLUS.ONE(1)\nexpect 2\neval =Other!B2:C3\nexpect {2,2;2,2}\n"
      "at Other!A1\nset Other!A1 = 1\nrecalc 5 =PLUS.ONE(Other!A1)\nexpect 6\n"
      "parallel 3 20 =PLUS.ONE(1)\nexpect 2\n"
      "book Second\neval =SHEET.NAME()\nexpect \"[Book1]Other\"\nset A1 = 3\neval =[Second]Sheet1!A1\nexpect 3\n");
  EXPECT_EQ(outcome.failed, 0) << outcome.printed;
  EXPECT_EQ(outcome.passed, 23);
}

TEST(ScriptRunning, AFailureTellsWhereAndWhat) {
  const Outcome outcome = RunText("case sums\n\neval =1+1\nexpect 3\n");
  EXPECT_EQ(outcome.printed,
            "test.calc:4: FAILED [sums]: not as expected\n  formula:  =1+1\n  expected: 3\n  got:      2\n");
}

TEST(ScriptRunning, FailuresOfCallbacksLastForOneEvaluation) {
  const Outcome outcome = RunText(
      "fail xlSheetNm xlretFailed\neval =SHEET.NAME()\nexpect #VALUE!\neval =SHEET.NAME()\nexpect \"[Book1]Calc\"\n"
      "fail xlSheetNm xlretFailed 2\neval =SHEET.NAME()&SHEET.NAME()\nexpect #VALUE!\nexpect-calls xlSheetNm 2\n"
      "close\nexpect 1\nfail xlGetName xlretFailed\nopen\nexpect 1\n");
  EXPECT_EQ(outcome.passed, 6) << outcome.printed;
  EXPECT_GT(outcome.failed, 0) << "registering without a module is told";
}

TEST(ScriptRunning, CallbacksAnswerAsTheyAreTold) {
  const Outcome outcome = RunText(
      "answer-with xlCoerce number\neval =COERCED(7,1)\nexpect -2.5\neval =COERCED(7,1)\nexpect 7\n"
      "answer-with xlCoerce text\neval =COERCED(7,1)\nexpect \"odd\"\n"
      "answer-with xlCoerce boolean\neval =COERCED(7,1)\nexpect TRUE\n"
      "answer-with xlCoerce error\neval =COERCED(7,1)\nexpect #N/A\n"
      "answer-with xlCoerce array\neval =COERCED(7,1)\nexpect {2.5,\"odd\";#N/A,empty}\n"
      "answer-with xlCoerce reference\neval =COERCED(7,1)\nexpect-ref A1:B1\n"
      "answer-with xlCoerce missing\neval =COERCED(7,1)\nexpect empty\n"
      "answer-with xlCoerce empty\neval =COERCED(7,1)\nexpect empty\n"
      "answer-with xlCoerce integer 2\neval =COERCED(7,1)&COERCED(7,1)\nexpect \"7-3\"\n"
      "answer-with xlCoerce =COERCED(\"5\",1)&\"!\"\neval =COERCED(7,1)&COERCED(7,1)\nexpect \"5!7\"\n"
      "expect-calls xlCoerce 3\n");
  EXPECT_EQ(outcome.failed, 0) << outcome.printed;
  EXPECT_EQ(outcome.passed, 12);
}

TEST(ScriptRunning, SettingsThatComeTooLate) {
  EXPECT_THROW(RunText("eval =1\nversion 11\n"), ScriptError);
  EXPECT_THROW(RunText("load A1 no-such-file.csv\n"), ScriptError);
}

}  // namespace
}  // namespace qcalc
