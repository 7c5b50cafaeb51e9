// The host against an add-in that breaks the rules: every breach must be told, and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/scripts/session.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Misbehaving : public ::testing::Test {
 protected:
  /// The formula's result as a literal.
  std::string Evaluate(const std::string& text) {
    const auto formula = ParseFormula(text);
    return PrintLiteral(session.Contents(session.Evaluate(*formula)));
  }
  std::vector<std::string> Complaints() { return session.Host().complaints.Take(); }

  Session session{ProgramFolder() / "misbehaving.xll"};
};

TEST_F(Misbehaving, NothingIsSaidOfFunctionsThatKeepTheRules) {
  EXPECT_EQ(Evaluate("=PLUS.ONE(2)+PLUS.ONE.MAIN(3)"), "7");
  EXPECT_EQ(Evaluate("=SHEET.NAME()"), "\"[Book1]Calc\"");
  session.Host().settings.shortReferences = false;
  EXPECT_EQ(Evaluate("=SHEET.NAME()"), "\"[Book1]Calc\"");
  EXPECT_EQ(Evaluate("=ECHO.VALUE4({1,\"a\u00E4\u20AC\";TRUE,#N/A})"), "{1,\"a\u00E4\u20AC\";TRUE,#N/A}");
  session.Finish();
  EXPECT_THAT(Complaints(), IsEmpty());
}

TEST_F(Misbehaving, ArgumentsPassedByValueAreConvertedByTheHost) {
  EXPECT_EQ(Evaluate("=BY.VALUE(\"3.9\",TRUE,-2,\"abcd\",12,\"xyz\",{1,2})"), "3323813")
      << "3+10-200+4000+20000+300000+3000000";
  EXPECT_EQ(Evaluate("=BY.VALUE(,,,,,,1.5)"), "1500000");
  EXPECT_EQ(Evaluate("=BY.VALUE(-2.9,FALSE,0,\"\",\"\",\"\",0)"), "-2");
  EXPECT_EQ(Evaluate("=BY.VALUE(3000000000,TRUE,0,0,0,0,1)"), "#NUM!");
  EXPECT_EQ(Evaluate("=BY.VALUE(1,TRUE,40000,0,0,0,1)"), "#NUM!");
  EXPECT_EQ(Evaluate("=BY.VALUE(\"x\",TRUE,1,0,0,0,1)"), "#VALUE!");
  EXPECT_EQ(Evaluate("=BY.VALUE(1,TRUE,1,0,0,0,{1,\"a\"})"), "#VALUE!");
  EXPECT_EQ(Evaluate("=BY.VALUE(#DIV/0!,TRUE,1,0,0,0,1)"), "#DIV/0!");
  EXPECT_THAT(Complaints(), IsEmpty());
}

TEST_F(Misbehaving, CoercionFollowsTheTable) {
  session.CurrentSheet().Set({0, 1, 0, 1}, *ParseLiteral("{1.5,\"2.5\";TRUE,empty}"));
  const std::pair<const char*, const char*> rows[] = {
      {"=COERCED(A1,1)", "1.5"},
      {"=COERCED(A1,2048)", "1"},
      {"=COERCED(B1,1)", "2.5"},
      {"=COERCED(B1,2)", "\"2.5\""},
      {"=COERCED(A2,1)", "1"},
      {"=COERCED(A2,2)", "\"TRUE\""},
      {"=COERCED(B2,1)", "0"},
      {"=COERCED(B2,2)", "\"\""},
      {"=COERCED(B2,256)", "empty"},
      {"=COERCED(A1:B2,1)", "1.5"},
      {"=COERCED(A1:B2,64)", "{1.5,\"2.5\";TRUE,empty}"},
      {"=COERCED(A1,64)", "{1.5}"},
      {"=COERCED(A1,8)", "1.5"},
      {"=COERCED(\"x\",1)", "-32"},
      {"=COERCED(#N/A,1)", "-32"},
      {"=COERCED(#N/A,16)", "#N/A"},
      {"=COERCED(,1)", "-32"},
      {"=COERCED(\"true\",4)", "TRUE"},
      {"=COERCED(\"1\",4)", "-32"},
      {"=COERCED(1E+300,2048)", "-32"},
  };
  for (const auto& [formula, expected] : rows) EXPECT_EQ(Evaluate(formula), expected) << formula;
  session.Host().settings.decimalSeparator = ',';
  EXPECT_EQ(Evaluate("=COERCED(\"16.0\",1)"), "-32");
  EXPECT_EQ(Evaluate("=COERCED(\"16,5\",1)"), "16.5");
  EXPECT_EQ(Evaluate("=COERCED(1.5,2)"), "\"1,5\"");
  EXPECT_EQ(Evaluate("=COERCED((A1,B1),64)"), "-32");
  session.Finish();
  EXPECT_THAT(Complaints(), IsEmpty());
}

TEST_F(Misbehaving, CallbacksToWorksheetFunctions) {
  session.CurrentSheet().Set({0, 2, 0, 1}, *ParseLiteral("{10,\"ten\";20,empty;\"Key\",#REF!}"));
  const std::pair<const char*, const char*> rows[] = {
      {"=CALLED(64,20,A1:A3,0)", "2"},
      {"=CALLED(64,\"k*\",A:A,FALSE)", "3"},
      {"=CALLED(64,15,A1:A3)", "1"},
      {"=CALLED(64,10,{30,20,10},0)", "3"},
      {"=CALLED(64,A2,(A1:A3,B1),0)", "#VALUE!"},
      {"=CALLED(64,{20;5},A1:A3,0)", "{2;#N/A}"},
      {"=CALLED(102,10,A1:B3,2,FALSE)", "\"ten\""},
      {"=CALLED(102,20,A1:B3,2,FALSE)", "empty"},
      {"=CALLED(102,25,A1:B3,1)", "20"},
      {"=CALLED(102,\"KEY\",A1:B3,2,FALSE)", "#REF!"},
  };
  for (const auto& [formula, expected] : rows) EXPECT_EQ(Evaluate(formula), expected) << formula;
  session.Finish();
  EXPECT_THAT(Complaints(), IsEmpty());
}

// The range goes over a cell that the formula does not name; the other formula comes first.
TEST_F(Misbehaving, WorksheetFunctionsDoNotReadWhatIsNotCalculated) {
  Sheet& sheet = session.CurrentSheet();
  sheet.SetFormula({9, 9, 2, 2}, *ParseFormula("=40+2"));
  sheet.SetFormula({0, 0, 0, 0}, *ParseFormula("=CALLED.MACRO(64,42,A10:INDEX(E:E,10),0)"));
  sheet.SetFormula({1, 1, 0, 0}, *ParseFormula("=CALLED(64,42,A10:INDEX(E:E,10),0)"));
  EXPECT_EQ(Evaluate("=A1:A2"), "{#N/A;3}") << "a macro-sheet equivalent gets the cell's old value";
}

TEST_F(Misbehaving, WhatIsKeptShowsWhenTheBooksClose) {
  EXPECT_EQ(Evaluate("=KEEP.LENT()+KEEP.LENT()+OWNED.VALUE4()+REFUSE.TO.CLOSE()"), "3");
  EXPECT_THAT(Complaints(), IsEmpty());
  session.Finish();
  EXPECT_THAT(
      Complaints(),
      ElementsAre("xlAutoClose did not return 1",
                  "KEEP.LENT kept 2 values of xlSheetNm: never given back through xlFree",
                  "OWNED.VALUE4 returned 1 value with xlbitDLLFree, and the add-in exports no way to free them"));
}

TEST_F(Misbehaving, FreeingWrongly) {
  Evaluate("=FREE.TWICE()");
  EXPECT_THAT(Complaints(), ElementsAre("FREE.TWICE: xlFree freed a value twice"));
  Evaluate("=FREE.EMPTIED()");
  EXPECT_THAT(Complaints(), ElementsAre("FREE.EMPTIED: xlFree was given a value that had been freed before"));
  Evaluate("=FREE.FOREIGN()");
  EXPECT_THAT(Complaints(), ElementsAre("FREE.FOREIGN: xlFree was given a value that the host had not lent"));
  Evaluate("=BOTH.BITS()");
  EXPECT_THAT(Complaints(), ElementsAre("BOTH.BITS returned a value with both free bits"));
  Evaluate("=FREE.NOT.LENT()");
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("xlbitXLFree that the host had not lent")));
#if !defined(__SANITIZE_ADDRESS__)  // which ends the process there and then
  Evaluate("=WRITE.AFTER.FREE()");
  session.Finish();
  EXPECT_THAT(Complaints(),
              ElementsAre("WRITE.AFTER.FREE wrote to memory of xlSheetNm after giving it back through xlFree"));
#endif
}

#if defined(_WIN32) || defined(__SANITIZE_ADDRESS__)  // elsewhere the host cannot tell which memory is the heap's
TEST_F(Misbehaving, HeapMemoryReturnedUnmarked) {
  EXPECT_EQ(Evaluate("=FORGET.BIT()"), "\"lost\"");
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("without xlbitDLLFree")));
}
#endif

TEST_F(Misbehaving, ArgumentsMayNotBeChanged) {
  EXPECT_EQ(Evaluate("=CHANGE.ARGUMENT(1,2)"), "1");
  EXPECT_THAT(Complaints(), ElementsAre("CHANGE.ARGUMENT changed its argument 2"));
  session.Names()[XTEXT("large")] = session.EvaluateQuietly(*ParseFormula("=SEQUENCE(5000)"));
  Evaluate("=CHANGE.ARGUMENT(1,large)");
  EXPECT_THAT(Complaints(), ElementsAre("CHANGE.ARGUMENT changed its argument 2"));
}

TEST_F(Misbehaving, ValuesThatNoFunctionMayReturn) {
  const std::pair<const char*, const char*> values[] = {
      {"#VALUE!", "type 512"},
      {"#VALUE!", "type 32"},
      {"#VALUE!", "a kind that no function returns"},
      {"#NUM!", "a number that is not finite"},
      {"#VALUE!", "a text with a null pointer"},
      {"#VALUE!", "a text of 40000 units"},
      {"#VALUE!", "an array of 0 x 1"},
      {"#VALUE!", "an array element (1, 1) with type 64"},
      {"#VALUE!", "an array element (1, 1) with free bits"},
      {"{#NUM!}", "an array element (1, 1) with a number that is not finite"},
      {"TRUE", "a boolean of 7"},
      {"#VALUE!", "an error of code -1"},
      {"#VALUE!", "a reference that leaves the sheet"},
      {"0", "unknown bits in its type"},
  };
  int which = 0;
  for (const auto& [result, complaint] : values) {
    EXPECT_EQ(Evaluate("=BAD.VALUE(" + std::to_string(++which) + ")"), result);
    EXPECT_THAT(Complaints(), ElementsAre(HasSubstr(complaint))) << which;
  }
  EXPECT_EQ(Evaluate("=BAD.VALUE(99)"), "#NUM!") << "a null pointer";
  EXPECT_THAT(Complaints(), IsEmpty());
}

TEST_F(Misbehaving, CallbacksThatAreRefused) {
  const std::tuple<const char*, int, const char*> calls[] = {
      {"BAD.CALLBACK(1)", xlretNotThreadSafe, "xlfGetWorkspace may not be made from a thread-safe function"},
      {"BAD.CALLBACK.MAIN(1)", xlretInvXlfn, "xlfGetWorkspace may not be made from a worksheet function"},
      {"BAD.CALLBACK(2)", xlretInvXlfn, "callback number 9999 is unknown"},
      {"BAD.CALLBACK(3)", xlretInvXlfn, "outside any call of the host's: xlfCaller may not be made"},
      {"BAD.CALLBACK(4)", xlretInvCount, "xlCoerce was given 3 arguments"},
      {"BAD.CALLBACK(5)", xlretInvXloper, "a null pointer as argument 1"},
      {"BAD.CALLBACK(6)", xlretInvXloper, "an array of 0 x 0 as argument 1"},
      {"BAD.CALLBACK(7)", xlretInvXlfn, "xlPrompt"},
      {"BAD.CALLBACK.MAIN(8)", xlretInvXlfn, "xlcAlert may not be made from a worksheet function"},
      {"BAD.CALLBACK.MACRO(8)", xlretInvXlfn, "xlcAlert may not be made from a macro-sheet equivalent"},
      {"BAD.CALLBACK(9)", xlretNotThreadSafe, "xlSet may not be made from a thread-safe function"},
      {"BAD.CALLBACK.MACRO(9)", xlretInvXlfn, "xlSet may not be made from a macro-sheet equivalent"},
      {"BAD.CALLBACK(10)", xlretNotThreadSafe, "xlfIndirect may not be made from a thread-safe function"},
      {"BAD.CALLBACK.MAIN(10)", xlretFailed, "not offered by this host"},
      {"BAD.CALLBACK(11)", xlretNotThreadSafe, "xlGetName may not be made from a thread-safe function"},
      {"BAD.CALLBACK(14)", xlretFailed, "xlAsyncReturn is not offered by this host"},
  };
  for (const auto& [call, code, complaint] : calls) {
    EXPECT_EQ(Evaluate(std::string("=") + call), std::to_string(code)) << call;
    EXPECT_THAT(Complaints(), ElementsAre(HasSubstr(complaint))) << call;
  }
  EXPECT_EQ(Evaluate("=BAD.CALLBACK.MACRO(1)"), "0") << "a macro-sheet equivalent may ask";
}

TEST_F(Misbehaving, NothingButFreeingIsAllowedWhenFreeingAndAfterAnAbort) {
  Evaluate("=BAD.CALLBACK(13)");
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("xlfCaller may not be made from xlAutoFree")));
  for (const int code : {xlretUncalced, xlretAbort}) {
    session.Host().meter.Fail(*FindXlCallback("xlfCaller"), code, 1);
    EXPECT_EQ(Evaluate("=BAD.CALLBACK(12)"), std::to_string(code));
    EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("was made after a code that leaves only xlFree allowed")));
  }
  EXPECT_EQ(Evaluate("=BAD.CALLBACK(12)"), "0") << "failures last for one evaluation";
}

TEST_F(Misbehaving, AnInjectedFailureIsNotTheAddinsFault) {
  session.Host().meter.Fail(*FindXlCallback("xlfGetWorkspace"), xlretFailed, 0);
  EXPECT_EQ(Evaluate("=BAD.CALLBACK(1)"), "32");
  session.Host().meter.Fail(*FindXlCallback("xlFree"), xlretFailed, 0);
  Evaluate("=SHEET.NAME()");
  session.Finish();
  EXPECT_THAT(Complaints(), IsEmpty());
}

TEST_F(Misbehaving, RegistrationsThatAreRefused) {
  int which = 0;
  for (const char* complaint : {"a text of 256 units", "exclude each other", "'W' is none", "exports no such procedure",
                                "names another module than xlGetName gives: other.xll"}) {
    Evaluate("=BAD.REGISTRATION(" + std::to_string(++which) + ")");
    EXPECT_THAT(Complaints(), ElementsAre(HasSubstr(complaint)));
  }
  EXPECT_EQ(Evaluate("=MARKS(1)"), "#NAME?");
}

#if !defined(__SANITIZE_THREAD__)  // which sees the race in the add-in before the host does
TEST_F(Misbehaving, OneStaticResultOnManyThreads) {
  session.EvaluateInParallel(2, 5, *ParseFormula("=STATIC.RESULT()"));
  EXPECT_THAT(Complaints(), AllOf(Contains(HasSubstr("one static value on two threads")),
                                  Contains(HasSubstr("another call had returned and the host was still copying"))));
}
#endif

TEST_F(Misbehaving, FunctionsThatAreNotThreadSafeRunOnTheMainThread) {
  const std::vector<Value> results = session.EvaluateInParallel(4, 200, *ParseFormula("=PLUS.ONE.MAIN(1)+PLUS.ONE(1)"));
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].AsNumber(), 4);
  session.Finish();
  EXPECT_THAT(Complaints(), IsEmpty());
}

}  // namespace
}  // namespace qcalc
