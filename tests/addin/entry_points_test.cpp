// The add-in itself, through the functions that Excel calls by name, in both of Excel's interfaces.
#include <algorithm>

#include "host/api/oper_types.h"
#include "host/callbacks/callbacks.h"
#include "tests/host/session_fixture.h"
#include "xlcall/callback_list.h"

namespace qcalc {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class EntryPoints : public SessionTest {
 protected:
  EntryPoints() : SessionTest("Quillmere4.xll") { session.Open(); }

  std::optional<int> Call(const char* name) { return session.ItsAddin().CallEntryPoint(name, context); }

  /// What the Add-in Manager is told, freed twice; an error value as "#" and its code. The interface is that of `Oper`,
  /// and its entry points' names end in `suffix`.
  template <class Oper>
  std::string LongName(const std::string& suffix, Oper* action) {
    const Library& library = *session.Host().library;
    Oper* answer = nullptr;
    {
      const CallContext frame(session.Host(), Place::kCommand, "the Add-in Manager", context);
      answer = library.FindAs<Oper* (*)(Oper*)>("xlAddInManagerInfo" + suffix)(action);
    }
    const auto type = static_cast<std::uint32_t>(answer->xltype);
    std::string name = "a value of type " + std::to_string(type);
    if (type == xltypeErr) name = "#" + std::to_string(answer->val.err);
    if (TypeOf(*answer) == xltypeStr) {
      EXPECT_EQ(type, xltypeStr | xlbitDLLFree);
      name.assign(answer->val.str + 1, answer->val.str + 1 + static_cast<std::uint16_t>(answer->val.str[0]));
    }
    const CallContext frame(session.Host(), Place::kFreeing, "freeing", context);
    for (int i = 0; i < 2; ++i) library.FindAs<void (*)(Oper*)>("xlAutoFree" + suffix)(answer);
    EXPECT_EQ(answer->xltype & xlbitDLLFree, 0);
    return name;
  }

  template <class Oper>
  void AskForLongNames(const std::string& suffix) {
    const std::string longName = "Quillmere V4 array functions", valueError = "#" + std::to_string(xlerrValue);
    std::remove_pointer_t<decltype(Oper{}.val.str)> units[] = {1, 'x'};
    Oper whole{}, real{}, other{}, text{}, missing{};
    whole.xltype = other.xltype = xltypeInt;
    whole.val.w = 1;
    other.val.w = 2;
    real.xltype = xltypeNum;
    real.val.num = 1.0;
    text.xltype = xltypeStr;
    text.val.str = units;
    missing.xltype = xltypeMissing;
    for (Oper* const action : {&whole, &real, &whole}) EXPECT_EQ(LongName(suffix, action), longName);
    for (Oper* const action : {&other, &text, &missing, static_cast<Oper*>(nullptr)})
      EXPECT_EQ(LongName(suffix, action), valueError);
    // One callback, and what it fails to answer or answers oddly is given back.
    const XlCallback& coerce = *FindXlCallback("xlCoerce");
    CallbackMeter& meter = session.Host().meter;
    const auto askOnce = [&](const std::string& expected) {
      meter.Start();
      EXPECT_EQ(LongName(suffix, &whole), expected);
      EXPECT_EQ(meter.Calls(coerce), 1);
      meter.Stop();
    };
    askOnce(longName);
    meter.Fail(coerce, xlretFailed, 0);
    askOnce(valueError);
    meter.AnswerWith(coerce, AnswerKind::kText, 0);
    askOnce(valueError);
  }

  const EvaluationContext context{
      &session.ItsWorkbooks(), &session.CurrentSheet(), &session.Names(), &session.ItsAddin(), {}};
};

TEST_F(EntryPoints, TheAddInManagerIsToldTheLongName) {
  AskForLongNames<XLOPER12>("12");
  AskForLongNames<XLOPER>("");
}

TEST_F(EntryPoints, OpensAnewOnceItWasClosedOrRemoved) {
  using Steps = std::vector<std::string>;
  // The commands of events come and go with the bridge to the object model, where there is one.
  const auto registered = [this] {
    return std::ranges::count_if(session.Host().registry.All(), [](const RegisteredFunction* each) {
      return !each->name.starts_with(XTEXT("xll_Quillmere4_On"));
    });
  };
  const auto all = registered();
  EXPECT_EQ(Call("xlAutoAdd"), 1);
  for (const Steps& steps : {Steps{}, Steps{"xlAutoClose", "xlAutoClose"}, Steps{"xlAutoRemove", "xlAutoRemove"},
                             Steps{"xlAutoRemove", "xlAutoClose"}, Steps{"xlAutoClose", "xlAutoRemove"}}) {
    for (const std::string& step : steps) EXPECT_EQ(Call(step.c_str()), 1);
    const bool isRemoved = std::ranges::count(steps, "xlAutoRemove") != 0;
    EXPECT_EQ(registered(), isRemoved ? 0 : all) << "each as often as it was registered";
    EXPECT_EQ(Evaluate("=VSTACKF(0,{1,2},3)"), isRemoved ? "#NAME?" : "{1,2;3,3}");
    EXPECT_EQ(Call("xlAutoOpen"), steps.empty() ? 0 : 1);
    EXPECT_EQ(registered(), all);
    EXPECT_EQ(Evaluate("=VSTACK(0,{1,2},3)"), "{1,2;3,3}");
  }
}

TEST_F(EntryPoints, TheObserverHearsOfEventsWhileItLives) {
  using Handler = XLOPER* (*)(std::int32_t, void*, void*, void*);
  const Library& library = *session.Host().library;
  const auto heard = [&](std::int32_t event) -> bool {
    std::vector<bool> answers;
    for (const char* const name : {"CXlApp_ObserverEventHandler12", "CXlApp_ObserverEventHandler4"}) {
      const XLOPER& answer = *library.FindAs<Handler>(name)(event, nullptr, nullptr, nullptr);
      EXPECT_EQ(answer.xltype, xltypeBool);
      answers.push_back(answer.val.xbool != 0);
    }
    EXPECT_EQ(answers[0], answers[1]);
    return answers[0];
  };
  EXPECT_NE(session.Host().registry.Find(XTEXT("xll_Quillmere4_observer")), nullptr);
  EXPECT_TRUE(heard(1) && heard(2) && heard(3));
  EXPECT_FALSE(heard(0) || heard(4) || heard(-1));
  for (const char* const name : {"OnSheetActivate", "OnSheetDeactivate", "OnCalculate"})
    EXPECT_EQ(library.FindAs<std::int16_t (*)()>(std::string("CXllComImpl_") + name)(), 1);
  EXPECT_EQ(library.FindAs<std::int32_t (*)()>("Destroy_Used_TopBottom")(), 1);
  EXPECT_EQ(Call("xlAutoClose"), 1);
  EXPECT_FALSE(heard(1));
  EXPECT_EQ(Call("xlCheckInstance"), 1);
  EXPECT_TRUE(heard(1)) << "Excel may go on with an add-in that it closed";
}

TEST_F(EntryPoints, TheBinaryTypeOfAFile) {
  const auto binaryType = session.Host().library->FindAs<std::int32_t (*)(const char*)>("l64BitExe");
#if defined(_WIN32)
  constexpr std::int32_t kOwnType = 6;
  const std::string program = (ProgramFolder() / "host_tests.exe").string();
#else
  constexpr std::int32_t kOwnType = -1;  // no program of Windows
  const std::string program = (ProgramFolder() / "host_tests").string();
#endif
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(binaryType(program.c_str()), kOwnType);
  EXPECT_THAT(::testing::internal::GetCapturedStderr(),
              AllOf(HasSubstr("\"Display String ByVal\": " + program), HasSubstr("answered: ok")));
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(binaryType((program + ".none").c_str()), -1);
  EXPECT_EQ(binaryType(session.Host().library->Path().string().c_str()), -1) << "a library";
  EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr(program + ".none"));
  EXPECT_EQ(binaryType(nullptr), -1);
}

/// What the 8-bit interface lends is watched like the rest, whoever calls.
TEST_F(EntryPoints, EightBitCallbacksThroughTheCallLibrary) {
  const auto library = LoadCallLibrary();
#if defined(_WIN32)
  ASSERT_NE(library, nullptr);
#endif
  const auto excel4v = library ? library->FindAs<XlExcel4v>("Excel4v") : &Excel4v;
  ASSERT_NE(excel4v, nullptr);
  XLOPER name{}, number{}, type{}, text{};
  {
    const CallContext frame(session.Host(), Place::kCommand, "a command", context);
    if (library) {
      const auto excel4 = library->FindAs<int (*)(int, XLOPER*, int, ...)>("Excel4");
      char units[] = {2, '4', '2'};
      text.xltype = xltypeStr;
      text.val.str = units;
      type.xltype = xltypeInt;
      type.val.w = xltypeInt;
      ASSERT_EQ(excel4(xlCoerce, &number, 2, &text, &type), xlretSuccess);
      EXPECT_EQ(number.val.w, 42);
      EXPECT_EQ(excel4(xlCoerce, &number, 256), xlretInvCount);
      EXPECT_EQ(library->FindAs<int (*)()>("XLCallVer")(), 12 * 256);
    }
    ASSERT_EQ(excel4v(xlGetName, &name, 0, nullptr), xlretSuccess);
    EXPECT_THAT(std::string(name.val.str + 1, static_cast<unsigned char>(name.val.str[0])),
                ::testing::EndsWith("Quillmere4.xll"));
  }
  session.Finish();
  EXPECT_THAT(Complaints(), ElementsAre("a command kept 1 value of xlGetName: never given back through xlFree"));
}

}  // namespace
}  // namespace qcalc
