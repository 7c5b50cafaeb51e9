// Scripts: how they are read, what they count and print.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/dialogs/key_strokes.h"
#include "host/scripts/runner.h"
#include "host/text/near_names.h"
#include "tests/host/case_table.h"

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
  Tally tally;
  Report report(output, tally);
  ScriptRunner("test.calc", {}, ProgramFolder() / "misbehaving.xll", report).Run(*commands);
  return {static_cast<int>(tally.passed), static_cast<int>(tally.failed), output.str()};
}

TEST(ScriptReading, MistakesAreToldWithTheirPlace) {
  const auto mistake = [](const std::string& script) { return ParseScript(script).Error().ToString(); };
  for (const auto& [command, told] : CasesOf(R"(
      eval 1 -> 6, which begins with '=' | eval =1+ -> 9, expected | set A1 1 -> 9, expected '=' | at -> 3, expected
      set Q = {1,2;3} -> 5, expected | set A1 = {1,2;3} -> 16, expected | expect 1 2 -> 10, expected
      recalc 0 =1 -> 8, from 1 to | fail xlCorce xlretFailed -> 6, found 'xlCorce'; near names: xlCoerce
      fail xlCoerce 32 -> 15, xlretFailed | refs sref -> 6, expected one of SRef, Ref
      answer-with xlCoerce word -> 22, expected a kind of value (number, text, | mutate 1 type -2 -> 15, bits of a type
      mutate 2 bits 0x50g -> 15, bits of a type | mutate 1 dims 3x -> 15, a size such as 3x2
      mutate 1 dims 3 -> 15, a size such as 3x2 | fail-alloc 1 twice -> 14, expected one of once, on
      set A1048577 = 1 -> 5, up to XFD1048576, found 'A1048577' | set A1 = #FOO -> 11, found 'FOO' after
      reload 501 -> 8, from 1 to 500 | hide A1:B2 -> 6, expected rows such as | expect-shape 3 -> 14, such as 3x2
      let A1 = 3 -> 5, a reference | let x y = 3 -> 6, found ' ' | let True = 3 -> 5, a value | print 3 -> 7, expected the end of the line)")) {
    const std::size_t comma = told.find(", ");
    EXPECT_THAT(mistake(command),
                AllOf(HasSubstr("line 1, column " + told.substr(0, comma) + ": "), HasSubstr(told.substr(comma + 2))))
        << command;
  }
  EXPECT_THAT(mistake("# a comment\n\n  evall =1\n"), HasSubstr("line 3, column 3: expected a command"));
  EXPECT_THAT(mistake("eval =SUM(1,\\\n  2\n"), HasSubstr("line 2, column 4: expected"));
  EXPECT_THAT(mistake("case \xFF\n"), HasSubstr("UTF-8"));
  EXPECT_THAT(mistake("at\n"), HasSubstr("the form is: at REF"));
}

TEST(ScriptReading, KeysAreNamed) {
  const auto strokes = ParseKeyStrokes(R"(Alt+Control+Down "a""b")");
  ASSERT_TRUE(strokes);
  ASSERT_EQ(strokes->size(), 4u);
  EXPECT_TRUE((*strokes)[0].withAlt && (*strokes)[0].withControl && !(*strokes)[0].withShift);
  EXPECT_EQ((*strokes)[0].key, 0x28);
  EXPECT_EQ((*strokes)[2].unit, XTEXT('"'));
  for (const auto& [keys, told] : CasesOf(R"(
      Tab Tub -> column 5: expected a key (Tab, | Ctrl+Tab -> column 1: expected Alt, | Alt+ -> found the end | "a" "b -> column 5: expected a text)"))
    EXPECT_THAT(ParseKeyStrokes(keys).Error().ToString(), HasSubstr(told)) << keys;
}

TEST(NearNames, AreFewMistakesAway) {
  const std::vector<std::string> known = {"VSTACK", "HSTACK", "AVLOOKUP2", "AVLOOKUPS2", "IF", "SUM"};
  for (const auto& [written, near] : CasesOf(R"(
      vstak -> VSTACK | VSATCK -> VSTACK HSTACK | stack -> HSTACK VSTACK | avlookup -> AVLOOKUP2 AVLOOKUPS2 | fi -> IF | SUMME -> none
      XY -> none)")) {
    std::string found;
    for (const std::string& name : NearNames(written, known)) found += (found.empty() ? "" : " ") + name;
    EXPECT_EQ(found.empty() ? "none" : found, near) << written;
  }
}

TEST(ScriptRunning, MarksLineEndsAndContinuations) {
  const Outcome outcome = RunText(
      "\xEF\xBB\xBF"
      "eval ={1,\\\r\n2}\r\nexpect {1,2}\r\n#expect 5\r\nexpect-shape \\\n1x2");
  EXPECT_EQ(outcome.passed, 2);
  EXPECT_EQ(outcome.failed, 0) << outcome.printed;
}

TEST(ScriptRunning, EveryExpectationCanFail) {
  const Outcome outcome = RunText(
      "expect 1\nprint\nudf F 1\nexpect-udf 1\n"
      "eval =1\nexpect 2\nexpect {1}\nexpect \"1\"\nexpect =1+1\nexpect~ 1.00000001\nexpect-ref A1\n"
      "eval =0.1+0.2\nexpect 0.3000001\n"
      "eval =A1\nexpect-ref A2\neval =(A1,B2)\nexpect-ref (A1,B3)\n"
      "eval ={1,2}\nexpect-shape 2x2\nexpect-shape 1x3\n"
      "eval =\"#ERROR: x\"\nexpect-error-text #ERROR: y\neval =#VALUE!\nexpect-error-text #VALUE!\n"
      "eval =SHEET.NAME()\nexpect-calls xlSheetNm 2\n"
      "eval =1+\"x\"\nexpect 1\n");
  EXPECT_EQ(outcome.failed, 18) << outcome.printed;
  EXPECT_EQ(outcome.passed, 0);
}

TEST(ScriptRunning, WhatCannotBeEvaluatedIsOneFailure) {
  const Outcome outcome = RunText(
      "eval =IRR(1)\nexpect 1\nexpect-shape 1x1\nexpect-calls xlCoerce 1\nprint\n"
      "set B1 = =IRR(1)\nset B2 = =B1\neval =B2\nexpect 1\neval =5\nexpect 5\neval =SUM(B1)\nexpect 1\n"
      "eval =PLUS.UNO(1)\nexpect #NAME?\n"
      "eval =Later!A1\nexpect #REF!\nset Later!A1 = 5\neval =Later!A1\nexpect 5\neval =Other!A1\nexpect #REF!\n"
      "hide Other!3:5\neval =Other!A1\nexpect empty\neval =Calc!A1\nexpect empty\n");
  EXPECT_EQ(outcome.passed, 7) << outcome.printed;
  EXPECT_EQ(outcome.failed, 2);
}

TEST(ScriptRunning, WhatTheBooksSayIsAFailureToo) {
  const Outcome outcome = RunText("eval =KEEP.LENT()\nexpect 1\nset A1 = =BAD.VALUE(1)\neval =A1\nexpect #VALUE!\n");
  EXPECT_EQ(outcome.passed, 2);
  EXPECT_EQ(outcome.failed, 2) << outcome.printed;
}

TEST(ScriptRunning, WhatNoScriptOfTheAddinAsksForPassesToo) {
  const Outcome outcome = RunText(
      "sheet Data\neval =(A1,B2:C3)\nexpect-ref (Data!A1,B2:C3)\neval =0.1+0.2\nexpect~ 0.3\n"
      "let x = ={1;2}\nlet y = 10\neval =SUM(x,Y)\nexpect 13\nlet x = 0\neval =SUM(x,y)\nexpect 10\n"
      "at Other!B2:C3\neval =SHEET.NAME()\nexpect \"[Book1]Other\"\nexpect-calls xlSheetNm 1\nexpect-calls xlFree 1\n"
      "recalc 3 =PLUS.ONE(1)\nexpect 2\neval =Other!B2:C3\nexpect {2,2;2,2}\n"
      "at Other!A1\nset Other!A1 = 1\nrecalc 5 =PLUS.ONE(Other!A1)\nexpect 6\n"
      "udf Mine 5\neval =CALLED(255,\"MINE\",8)\nexpect 5\nexpect-udf 8\n"
      "hide 3:5\nunhide 4\neval =CALLED.MACRO(185,17,A3)&CALLED.MACRO(185,17,A4)\nexpect \"015\"\n");
  EXPECT_EQ(outcome.failed, 0) << outcome.printed;
  EXPECT_EQ(outcome.passed, 13);
}

TEST(ScriptRunning, CommandsMayDoMoreThanFunctionsAndAreWatched) {
  const Outcome outcome = RunText(
      "eval =REGISTER.AS(\"DO\",,2,,,\"UQUUUU\",\"Called\")\neval =DO(32887)\nexpect #NAME?\n"
      "run =DO(32887)&PLUS.ONE(1)\nexpect \"TRUE2\"\nexpect-books 2\nset B1 = =[Book2]Sheet1!A1&\"x\"\n"
      "eval =B1\nexpect \"x\"\nrun =DO(32912,TRUE)\nrun =DO(32912,FALSE)\nexpect TRUE\nexpect-books 1\n"
      "eval =B1\nexpect #REF!\nrun =DO(32912,FALSE)\nrun =DO(32909,FALSE)\n"
      "rtd Some.Server {1,2}\neval =CALLED(379,\"some.SERVER\",,\"a\",5)\nexpect {1,2}\n"
      "eval =CALLED(379,\"some.SERVER\",\"\",\"a\")\nexpect-rtd {\"a\",5;\"a\",empty}\nexpect-rtd none\nexpect-rtd "
      "{1}\n");
  EXPECT_EQ(outcome.passed, 10) << outcome.printed;
  EXPECT_EQ(outcome.failed, 4) << "a book to be saved, none to be closed, echo left off, no call of a server";
}

TEST(ScriptRunning, AFailureTellsWhereAndWhat) {
  const Outcome outcome = RunText("case sums\n\neval =1+1\nexpect 3\n");
  EXPECT_EQ(outcome.printed,
            "test.calc:4: FAILED [sums]: not as expected\n  formula:  =1+1\n  expected: 3\n  got:      2\n");
}

TEST(ScriptRunning, WhatIsToGoWrongDoesOnce) {
  std::string script;
  for (const auto& [kind, result] : CasesOf(R"(
      number -> expect -2.5 | text -> expect "odd" | boolean -> expect TRUE | error -> expect #N/A | empty -> expect empty
      array -> expect {2.5,"odd";#N/A,empty} | reference -> expect-ref A1:B1 | missing -> expect empty)"))
    script += "answer-with xlCoerce " + kind + "\neval =COERCED(7,1)\n" + result + "\n";
  const Outcome outcome = RunText(
      script +
      "eval =COERCED(7,1)\nexpect 7\n"
      "answer-with xlCoerce integer 2\neval =COERCED(7,1)&COERCED(7,1)\nexpect \"7-3\"\n"
      "answer-with xlCoerce =COERCED(\"5\",1)&\"!\"\neval =COERCED(7,1)&COERCED(7,1)\nexpect \"5!7\"\n"
      "expect-calls xlCoerce 3\n"
      "mutate 1 bits 0x5000\neval =DESCRIBE(1)\nexpect {20481,0,0,0}\n"
      "fail-alloc 3 on\neval =ALLOCATE(7,0)\nexpect 2\n"
      "fail xlSheetNm xlretFailed\neval =SHEET.NAME()\nexpect #VALUE!\neval =SHEET.NAME()\nexpect \"[Book1]Calc\"\n"
      "fail xlSheetNm xlretFailed 2\neval =SHEET.NAME()&SHEET.NAME()\nexpect #VALUE!\nexpect-calls xlSheetNm 2\n");
  EXPECT_EQ(outcome.failed, 0) << outcome.printed;
  EXPECT_EQ(outcome.passed, 18);
  const Outcome opening = RunText("eval =1\nclose\nexpect 1\nfail xlGetName xlretFailed\nopen\nexpect 1\n");
  EXPECT_EQ(opening.passed, 2) << opening.printed;
  EXPECT_GT(opening.failed, 0) << "registering without a module is told";
}

TEST(ScriptRunning, WhatWasArmedForNothingIsAFailure) {
  const Outcome outcome = RunText(
      "fail xlSheetNm xlretFailed 2\neval =SHEET.NAME()\nmutate 1 null\neval =1\nfail-alloc 50\neval =ALLOCATE(7,0)\n"
      "double-free\neval =1\nparallel 2 3 =BAD.VALUE(11)\neval =BAD.VALUE(11)\nfail xlfCaller xlretFailed\n");
  EXPECT_EQ(outcome.failed, 6) << outcome.printed;
  EXPECT_THAT(outcome.printed, AllOf(HasSubstr("xlSheetNm, call 2: there were 1 calls"), HasSubstr("mutate: "),
                                     HasSubstr("allocation 50: there were "), HasSubstr("double-free: "),
                                     HasSubstr("in all 7 times: BAD.VALUE returned a boolean of 7"),
                                     HasSubstr(":11: FAILED [end of the script]: what was armed met nothing")));
}

TEST(ScriptRunning, SettingsThatComeTooLate) {
  EXPECT_THROW(RunText("eval =1\nversion 11\n"), ScriptError);
  EXPECT_THROW(RunText("load A1 no-such-file.csv\n"), ScriptError);
  EXPECT_THROW(RunText("set A1:XFD1048576 = =1\n"), ScriptError);
}

}  // namespace
}  // namespace qcalc
