// The host against an add-in that breaks the rules: every breach must be told, and nothing else.
#include <cstdlib>
#include <filesystem>

#include "host/library/allocation.h"
#include "host/library/processor_state.h"
#include "host/text/letter_case.h"
#include "tests/host/session_fixture.h"

namespace qcalc {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Misbehaving : public SessionTest {};

// DESCRIBE tells the type first: SRef, Ref.
TEST_F(Misbehaving, ValuesSurviveTheWayInBothWidthsAsFarAsTheyFit) {
  session.CurrentSheet().Set({0, 1, 0, 1}, *ParseLiteral("{1,2;3,4}"));
  session.CurrentSheet().ItsBook().SheetNamed(XTEXT("Other"));
  for (const bool isShort : {true, false}) {
    session.Host().settings.shortReferences = isShort;
    EXPECT_EQ(Evaluate("=DESCRIBE(A1:B2)"), isShort ? "{1024,0,0,0}" : "{8,0,0,0}");
    Check(R"(
        =PLUS.ONE(2)+PLUS.ONE.MAIN(3) -> 7 | =SHEET.NAME() -> "[Book1]Calc"
        =DESCRIBE(Other!A1) -> {8,0,0,0} | =DESCRIBE((A1,B2)) -> {8,0,0,0} | =SUM(ECHO.REFERENCE4((A1,B2))) -> 5
        =ECHO.REFERENCE4(A1:B2) -> {1,2;3,4} | =ECHO.REFERENCE4(A70000) -> #VALUE! | =ECHO.VALUE4(A1:B2) -> {1,2;3,4}
        =ECHO.VALUE4(1.5) -> 1.5 | =ECHO.VALUE4(TRUE) -> TRUE | =ECHO.VALUE4(#N/A) -> #N/A | =ECHO.VALUE4(C1) -> empty
        =ECHO.VALUE4("") -> "" | =ECHO.VALUE4({1,"a",TRUE;#DIV/0!,empty,""}) -> {1,"a",TRUE;#DIV/0!,empty,""}
        =LEN(ECHO.VALUE4(REPT("x",255))) -> 255 | =ECHO.VALUE4(REPT("x",256)) -> #VALUE!
        =ROWS(ECHO.VALUE4(SEQUENCE(65535))) -> 65535 | =ECHO.VALUE4(SEQUENCE(65536)) -> #VALUE!)");
  }
  EXPECT_EQ(Evaluate("=ECHO.VALUE4(\"a\u00E4\u20AC\")"), "\"a\u00E4\u20AC\"");
}

// Of the first sum: 3 + 10 - 200 + 4,000 + 20,000 + 300,000 + 3,000,000.
TEST_F(Misbehaving, ArgumentsPassedByValueAreConvertedByTheHost) {
  Check(R"(
      =BY.VALUE("3.9",TRUE,-2,"abcd",12,"xyz",{1,2}) -> 3323813 | =BY.VALUE(,,,,,,1.5) -> 1500000
      =BY.VALUE(-2.9,FALSE,0,"","","",0) -> -2 | =BY.VALUE(3000000000,TRUE,0,0,0,0,1) -> #NUM!
      =BY.VALUE(1,TRUE,40000,0,0,0,1) -> #NUM! | =BY.VALUE("x",TRUE,1,0,0,0,1) -> #VALUE!
      =BY.VALUE(1,TRUE,1,0,0,0,{1,"a"}) -> #VALUE! | =BY.VALUE(#DIV/0!,TRUE,1,0,0,0,1) -> #DIV/0!)");
}

TEST_F(Misbehaving, CallbacksAnswerByTheirTables) {
  session.Names()[XTEXT("large")] = Value::Number(7);
  session.CurrentSheet().Set({0, 4, 0, 1}, *ParseLiteral(R"({1.5,"2.5";TRUE,empty;10,"ten";20,empty;"Key",#REF!})"));
  Check(R"-(
      =COERCED(A1,1) -> 1.5 | =COERCED(A1,2048) -> 1 | =COERCED(B1,1) -> 2.5 | =COERCED(B1,2) -> "2.5"
      =COERCED(A2,1) -> 1 | =COERCED(A2,2) -> "TRUE" | =COERCED(B2,1) -> 0 | =COERCED(B2,2) -> ""
      =COERCED(B2,256) -> empty | =COERCED(A1:B2,1) -> 1.5 | =COERCED(A1:B2,64) -> {1.5,"2.5";TRUE,empty}
      =COERCED(A1,64) -> {1.5} | =COERCED(A1,8) -> 1.5 | =COERCED("x",1) -> -32 | =COERCED(#N/A,1) -> -32
      =COERCED(#N/A,16) -> #N/A | =COERCED(,1) -> -32 | =COERCED("true",4) -> TRUE | =COERCED("1",4) -> -32
      =COERCED(1E+300,2048) -> -32 | =COERCED((A1,B1),64) -> -32
      =CALLED(64,20,A3:A5,0) -> 2 | =CALLED(64,"k*",A:A,FALSE) -> 5 | =CALLED(64,15,A3:A5) -> 1
      =CALLED(64,10,{30,20,10},0) -> 3 | =CALLED(64,A4,(A3:A5,B3),0) -> #VALUE!
      =CALLED(64,{20;5},A3:A5,0) -> {2;#N/A} | =CALLED(102,10,A3:B5,2,FALSE) -> "ten"
      =CALLED(102,20,A3:B5,2,FALSE) -> empty | =CALLED(102,25,A3:B5,1) -> 20
      =CALLED(33,"$1,000") -> 1000 | =CALLED(48,1234.5,"#,##0.0") -> "1,234.5" | =CALLED(169,A1:B5,"") -> 9
      =CALLED(102,"KEY",A3:B5,2,FALSE) -> #REF! | =CALLED(255,"plus.one",A1) -> 2.5
      =CALLED(255,CALLED(257,"plus.one"),A1) -> 2.5 | =CALLED(255,"plus.one",(A1,A2)) -> #VALUE!
      =REGISTER.AS("A.COMMAND",,2) -> 1 | =CALLED(255,"a.command") -> #NAME? | =DESCRIBE(CALLED(257,"!A1:B2")) -> {1024,0,0,0}
      =CALLED(257,"=SUM(Sheet1!A3:A4)") -> 30 | =CALLED(257,"SUM(A3:A4)") -> #NAME? | =CALLED(257,"A3") -> #NAME?
      =CALLED(257,"!large") -> 7 | =CALLED(257,"large") -> #NAME? | =CALLED(257,"!nobody") -> #NAME?
      =CALLED(257,"1+") -> #VALUE! | =CALLED(257,"1"&REPT("+1",127)) -> 128 | =CALLED(257,"01"&REPT("+1",127)) -> #VALUE!)-");
  CheckTold(R"(
      =COERCED(A1,32) -> -8, 2 that is not a set of types | =COERCED(A1,514) -> -8, 2 that is not a set of types
      =COERCED(A1,4097) -> -8, 2 that is not a set of types
      =CALLED(64,1) -> -4, CALLED: xlfMatch was given 1 argument
      =CALLED(255,"plus.one",1,2) -> -4, CALLED: xlUDF was given 2 arguments)");
  session.Host().settings.marks.decimal = ',';
  Check(R"(=COERCED("16.0",1) -> -32 | =COERCED("1.016,5",1) -> 1016.5 | =COERCED(1.5,2) -> "1,5"
      =CALLED(33,"1.016,5") -> 1016.5 | =BY.VALUE("3,9",TRUE,0,"",0,0,0) -> 110013 | =CALLED(48,1.5,"0,00") -> "1,50" | =CALLED(8240,"1.5","0.00") -> "1.50")");
}

// The range goes over a cell that the formula does not name; the other formula comes first.
TEST_F(Misbehaving, FunctionsDoNotReadWhatIsNotCalculated) {
  Sheet& sheet = session.CurrentSheet();
  for (const std::int32_t row : {9, 10}) sheet.SetFormula({row, row, 2, 2}, *ParseFormula("=40+2"));
  sheet.SetFormula({0, 0, 0, 0}, *ParseFormula("=CALLED.MACRO(64,42,A10:INDEX(E:E,10),0)"));
  sheet.SetFormula({1, 1, 0, 0}, *ParseFormula("=SUM(CALLED.MACRO(255,\"ECHO.VALUE4\",A11:INDEX(E:E,11)))"));
  sheet.SetFormula({2, 2, 0, 0}, *ParseFormula("=CALLED(64,42,A10:INDEX(E:E,10),0)"));
  sheet.SetFormula({3, 3, 0, 0}, *ParseFormula("=SUM(CALLED(255,\"ECHO.VALUE4\",A11:INDEX(E:E,11)))"));
  EXPECT_EQ(Evaluate("=A1:A4"), "{#N/A;0;3;42}") << "a macro-sheet equivalent gets the cell's old value";
  sheet.SetFormula({9, 9, 3, 3}, *ParseFormula("=CALLED(64,42,A10:INDEX(E:E,10),0)"));
  EXPECT_THROW(Evaluate("=D10"), UncalculatedCell) << "which reads itself";
  EXPECT_EQ(session.FailuresInCells().size(), 1u);
}

TEST_F(Misbehaving, WhatIsKeptShowsWhenTheBooksClose) {
  Check("=KEEP.LENT()+KEEP.LENT()+OWNED.VALUE4()+REFUSE.TO.CLOSE() -> 3");
  session.Finish();
  EXPECT_THAT(
      Complaints(),
      ElementsAre("xlAutoClose did not return 1",
                  "KEEP.LENT kept 2 values of xlSheetNm: never given back through xlFree",
                  "OWNED.VALUE4 returned 1 value with xlbitDLLFree, and the add-in exports no way to free them"));
}

TEST_F(Misbehaving, WhatIsNeverFreedShowsWhenTheLibraryIsGone) {
  Check("=KEEP.OWN(FALSE) -> \"\"");
  const double address = session.Evaluate(*ParseFormula("=KEEP.OWN(TRUE)")).AsNumber();
  session.Finish();
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("the add-in never freed 2 blocks of their memory")));
  auto* const unfreed = reinterpret_cast<XLOPER12*>(static_cast<std::uintptr_t>(address));
  for (void* block : {static_cast<void*>(unfreed->val.str), static_cast<void*>(unfreed)}) {
    AddinAllocations().NoteFreed(block);  // which the host sees by itself where the add-in frees, or natively
    std::free(block);
  }
}

TEST_F(Misbehaving, FreeingWrongly) {
  session.Host().faults.FreeTwice();
  Check("=FREE.COUNT.UNMARKED() -> 0 | =FREE.COUNT() -> 2");
  CheckTold(R"(
      =FREE.TWICE() -> 1, FREE.TWICE: xlFree freed a value twice
      =FREE.EMPTIED() -> 1, FREE.EMPTIED: xlFree was given a value that had been freed before
      =FREE.FOREIGN() -> 1, FREE.FOREIGN: xlFree was given a value that the host had not lent
      =BOTH.BITS() -> 1, BOTH.BITS returned a value with both free bits
      =FREE.NOT.LENT() -> "ok", xlbitXLFree that the host had not lent
      =FORGET.BIT() -> "lost", without xlbitDLLFree
      =BAD.MEMORY(1) -> #VALUE!, returned a text of 9 units in a block of 6 bytes
      =BAD.MEMORY(2) -> #VALUE!, returned an array of 1000000 x 1 in a block of 32 bytes
      =BAD.MEMORY(3) -> #VALUE!, returned an array with a text of 9 units in a block of 6 bytes
      =BAD.MEMORY(4) -> {"[Book1]Calc"}, an array of its own with a text that the host had lent
      =BAD.MEMORY(5) -> #VALUE!, returned a text that it had given back through xlFree
      =BAD.MEMORY(6) -> #VALUE!, returned an array with a text that it had given back
      =BAD.MEMORY(8) -> #VALUE!, returned a reference that it had given back
      =BAD.MEMORY(64) -> #VALUE!, returned an array that it had given back)");
#if !defined(__SANITIZE_ADDRESS__)  // which ends the process there and then
  CheckTold(R"(
      =WRITE.PAST(1) -> 1, WRITE.PAST wrote past the end of a value of xlSheetNm
      =WRITE.PAST("ab") -> 1, WRITE.PAST changed its argument 1)");
  Evaluate("=WRITE.AFTER.FREE()");
  session.Finish();
  EXPECT_THAT(Complaints(),
              ElementsAre("WRITE.AFTER.FREE wrote to memory of xlSheetNm after giving it back through xlFree"));
#endif
}

TEST_F(Misbehaving, WhatIsTheThreadsAndTheProcessesStaysAsItWas) {
  const std::filesystem::path folder = std::filesystem::current_path();
  const ProcessorState processor = ProcessorState::Current();
  CheckTold(R"(
      =CHANGE.THREAD(1) -> 1, CHANGE.THREAD changed how the processor rounds
      =CHANGE.THREAD(2) -> 1, faults of arithmetic | =CHANGE.THREAD(3) -> 1, faults of arithmetic
      =CHANGE.THREAD(4) -> 1, how the processor rounds | =CHANGE.THREAD(5) -> 1, changed the current folder)");
  EXPECT_TRUE(std::filesystem::current_path() == folder && ProcessorState::Current() == processor);
  Check("=CHANGE.THREAD(0) -> 1");
}

TEST_F(Misbehaving, WhatTheSystemWouldGoOnCallingIsTakenAway) {
  const bool isLeft = Evaluate("=LEAVE.HOOK()") == "1";
  session.Reload(1);
  EXPECT_THAT(Complaints(),
              ElementsAreArray(std::vector<std::string>(
                  isLeft, "the add-in left 1 hook, 1 window class, 1 timer behind when it was to be unloaded")));
}

#if !defined(__SANITIZE_THREAD__)  // which tells of the thread itself
// A copy, which stays in memory afterwards.
TEST_F(Misbehaving, AThreadThatIsLeftKeepsTheLibraryInMemory) {
  const std::filesystem::path copy = std::filesystem::temp_directory_path() / "misbehaving_threads.xll";
  std::filesystem::copy_file(ProgramFolder() / "misbehaving.xll", copy,
                             std::filesystem::copy_options::overwrite_existing);
  Session other(copy);
  other.Evaluate(*ParseFormula("=LEAVE.THREAD()"));
  const auto endThread = other.Host().library->FindAs<void (*)()>("EndThread");
  other.Finish();
  endThread();
  EXPECT_THAT(other.Host().complaints.Take(),
              ElementsAre("the add-in left 1 thread running when it was to be unloaded"));
}
#endif

TEST_F(Misbehaving, ValuesThatNoFunctionMayReturn) {
  CheckTold(R"(
      =BAD.VALUE(1) -> #VALUE!, type 512 | =BAD.VALUE(2) -> #VALUE!, type 32
      =BAD.VALUE(3) -> #VALUE!, a kind that no function returns | =BAD.VALUE(4) -> #NUM!, a number that is not finite
      =BAD.VALUE(5) -> #VALUE!, a text with a null pointer | =BAD.VALUE(6) -> #VALUE!, a text of 40000 units
      =BAD.VALUE(7) -> #VALUE!, an array of 0 x 1 | =BAD.VALUE(8) -> #VALUE!, an array element (1, 1) with type 64
      =BAD.VALUE(9) -> #VALUE!, an array element (1, 1) with free bits
      =BAD.VALUE(10) -> {#NUM!}, an array element (1, 1) with a number that is not finite
      =BAD.VALUE(11) -> TRUE, a boolean of 7 | =BAD.VALUE(12) -> #VALUE!, an error of code -1
      =BAD.VALUE(13) -> #VALUE!, a reference that leaves the sheet | =BAD.VALUE(14) -> 0, unknown bits in its type
      =BAD.VALUE(17) -> #VALUE!, an array of 2000000 x 1
      =BAD.VALUE(15) -> #REF!, a reference to a sheet that does not exist
      =BAD.PLAIN.VALUE(16) -> #VALUE!, a reference and is registered to return values)");
  EXPECT_EQ(Evaluate("=BAD.VALUE(99)"), "#NUM!") << "a null pointer";
  EXPECT_THAT(Complaints(), IsEmpty());
}

// The results are the codes.
TEST_F(Misbehaving, CallbacksThatAreRefused) {
  session.Host().macroFunctions.results[FoldCase(XTEXT("text"))] = Value::Number(1);
  CheckTold(R"(
      =CALLED.SAFE(186,2) -> -128, xlfGetWorkspace may not be made from a thread-safe function
      =CALLED(186,2) -> -2, xlfGetWorkspace may not be made from a worksheet function
      =CALLED.SAFE(9999) -> -2, callback number 9999 is unknown
      =CALLED(16386,1,2,2) -> -4, xlCoerce was given 3 arguments | =CALLED(4100,1) -> -2, xlPrompt
      =CALLED(32886,"text") -> -2, xlcAlert may not be made from a worksheet function
      =CALLED.MACRO(32886,"text") -> -2, xlcAlert may not be made from a macro-sheet equivalent
      =CALLED.SAFE(16387,A1,2) -> -128, xlSet may not be made from a thread-safe function
      =CALLED.MACRO(16387,A1,2) -> -2, xlSet may not be made from a macro-sheet equivalent
      =CALLED.SAFE(148,"A1") -> -128, xlfIndirect may not be made from a thread-safe function
      =CALLED(125,"row") -> -32, not offered by this host
      =CALLED.SAFE(16393) -> -128, xlGetName may not be made from a thread-safe function
      =CALLED.SAFE(16400,1,2) -> -32, xlAsyncReturn is not offered by this host
      =CALLED.SAFE(255,"text") -> -128, xlUDF reached a function that is not thread-safe from one that is
      =BAD.CALLBACK(0) -> 8, a null pointer as argument 1 | =BAD.CALLBACK(1) -> 8, an array of 0 x 0 as argument 1
      =BAD.CALLBACK(2) -> 32, xlCoerce was given a sheet that does not exist as argument 1
      =BAD.CALLBACK(3) -> 8, xlCoerce was given a text of 9 units in a block of 10 bytes as argument 1
      =BAD.CALLBACK(4) -> 2, outside any call of the host's: xlfCaller may not be made
      =BAD.CALLBACK(6) -> 0, xlfCaller may not be made from xlAutoFree)");
  Check("=CALLED.MACRO(186,2) -> \"16.0\"");
}

TEST_F(Misbehaving, OnlyFreeingIsAllowedAfterAnAbort) {
  for (const int code : {xlretUncalced, xlretAbort}) {
    session.Host().meter.Fail(*FindXlCallback("xlfCaller"), code, 1);
    CheckTold("=BAD.CALLBACK(5) -> " + std::to_string(code) + ", made after a code that leaves only xlFree allowed");
  }
  EXPECT_EQ(Evaluate("=BAD.CALLBACK(5)"), "0") << "failures last for one evaluation";
  session.Finish();
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("never given back")));
}

TEST_F(Misbehaving, AnInjectedFailureIsNotTheAddinsFault) {
  session.Host().meter.Fail(*FindXlCallback("xlfGetWorkspace"), xlretFailed, 0);
  EXPECT_EQ(Evaluate("=CALLED.SAFE(186,2)"), "-32");
  session.Host().meter.Fail(*FindXlCallback("xlFree"), xlretFailed, 0);
  Evaluate("=SHEET.NAME()");
}

TEST_F(Misbehaving, RegistrationsThatAreRefused) {
  CheckTold(R"(
      =REGISTER.AS(REPT("N",256)) -> #VALUE!, a text of 256 units
      =REGISTER.AS("MARKS",,,,,"UQ#$") -> #VALUE!, exclude each other
      =REGISTER.AS("LETTER",,,,,"UW") -> #VALUE!, 'W' is none
      =REGISTER.AS("EXPORT",,,,,,"NotExported") -> #VALUE!, exports no such procedure
      =REGISTER.AS("MODULE",,,,,,,"other.xll") -> #VALUE!, names another module than xlGetName gives: other.xll
      =REGISTER.AS("A1") -> #VALUE!, which is a cell | =REGISTER.AS("xfd1") -> #VALUE!, which is a cell
      =REGISTER.AS("r1c1") -> #VALUE!, which is a cell | =REGISTER.AS("C") -> #VALUE!, which is a cell
      =REGISTER.AS("TRUE") -> #VALUE!, which is Excel's own | =REGISTER.AS("Match") -> #VALUE!, which is Excel's own
      =REGISTER.AS("MY SUM") -> #VALUE!, a character that no name holds | =REGISTER.AS("") -> #VALUE!, an empty name
      =REGISTER.AS("2ND") -> #VALUE!, does not begin with a letter
      =REGISTER.AS("A-B") -> #VALUE!, a character that no name holds | =REGISTER.AS(,,2) -> #VALUE!, no name for a command
      =REGISTER.AS("F.2","a,b") -> 1, more argument names (2) than arguments (1)
      =REGISTER.AS("F.3","a",2,"xy") -> 1, a shortcut that is not one character
      =REGISTER.AS("F.4","a",1,"x") -> 1, a shortcut for what is no command
      =REGISTER.AS("F.5",,,,"help.chm") -> 1, neither file!number nor | =REGISTER.AS("F.6",,,,"!5") -> 1, neither file
      =REGISTER.AS("F.7",,,,"a.chm!-1") -> 1, neither file | =REGISTER.AS("F.8",,,,"http://a/b!7") -> 1, neither file)");
  Check(R"-(
      =REGISTER.AS("TWICE") -> 1 | =REGISTER.AS("TWICE") -> 1 | =CALLED.MACRO(201,CALLED(257,"TWICE")) -> TRUE
      =TWICE(1) -> 2 | =CALLED.MACRO(201,CALLED(257,"TWICE")) -> TRUE | =TWICE(1) -> #NAME?
      =REGISTER.AS("VSTACK","") -> 1 | =REGISTER.AS("R1C1.2","a",2,"x") -> 1 | =REGISTER.AS("XFE1") -> 1
      =REGISTER.AS("_\?.ä",,,"","http://a/b!0") -> 1 | =REGISTER.AS("F.9",,,,"c:\a b.chm!4294967295") -> 1)-");
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
}

}  // namespace
}  // namespace qcalc
