// Opening, closing and removing the add-in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "addin/quillmere4_app.h"
#include "frame/callbacks/callbacks.h"
#include "frame/text/number_writing.h"
#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"
#include "tests/unit/fixtures/addin_excel.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr ArgumentDeclaration kArguments[] = {{.name = XTEXT("TheRange"), .kind = ArgumentKind::kReference}};
constexpr FunctionDeclaration kFirst{.procedure = "TEST_FIRST", .name = XTEXT("TEST.FIRST"), .arguments = kArguments};
constexpr FunctionDeclaration kSecond{.procedure = "TEST_SECOND", .name = XTEXT("TEST.SECOND")};
const CXllFunctionRecord firstRecord(kFirst);
const CXllFunctionRecord secondRecord(kSecond);

struct ThrowingHook : IXllOpenHook {
  void OnOpen(const CXllOpenContext& context) override {
    EXPECT_EQ(context.name, XTEXT("Quillmere4"));
    EXPECT_EQ(context.excel.version, 16);
    throw std::runtime_error("the hook broke");
  }
};

struct CountingHook : IXllOpenHook, IXllCloseHook {
  int opens = 0;
  int closes = 0;
  void OnOpen(const CXllOpenContext&) override { ++opens; }
  void OnClose() override {
    ++closes;
    throw std::runtime_error("must not keep the others from closing");
  }
};

int memoryClearings = 0;

class Lifecycle : public ::testing::Test {
 protected:
  ~Lifecycle() override { CXllApp::SetFormulaMemoryClearer(nullptr); }

  AddinExcel excel;
};

TEST_F(Lifecycle, OpensOnceAndClosesWithoutUnregistering) {
  TestApp app;
  CountingHook first;
  CountingHook second;
  for (CountingHook* const hook : {&first, &second}) {
    app.AddOpenHook(*hook);
    app.AddCloseHook(*hook);
  }
  memoryClearings = 0;
  CXllApp::SetFormulaMemoryClearer([] { ++memoryClearings; });

  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_TRUE(CXllApp::IsOpened());
  EXPECT_THAT(app.events, ElementsAre("OnBeforeOpen", "Open", "OnOpened"));
  EXPECT_EQ(CXllApp::AutoOpen(), 0) << "a second opening";
  EXPECT_EQ(app.events.size(), 3u);
  const auto registeredNames = excel.registered;
  EXPECT_EQ(registeredNames.size(), app.Registrables().size());
  EXPECT_GE(registeredNames.size(), 2u);

  for (int closing = 0; closing < 2; ++closing) {
    EXPECT_EQ(CXllApp::AutoClose(), 1);
    EXPECT_EQ(excel.registered, registeredNames) << "functions are still called after a closing that was cancelled";
    EXPECT_EQ(first.closes, 1);
    EXPECT_EQ(second.closes, 1);
    EXPECT_EQ(memoryClearings, 1);
  }
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_EQ(first.opens, 2);
  EXPECT_THAT(excel.unregisterSteps, IsEmpty()) << "cells in use would lose the name";
}

TEST_F(Lifecycle, RemovingUnregistersAndAllowsAnotherOpening) {
  TestApp app;
  EXPECT_EQ(CXllApp::AutoAdd(), 1);
  EXPECT_EQ(CXllApp::AutoRemove(), 1) << "nothing to remove yet";
  ASSERT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_EQ(CXllApp::AutoRemove(), 1);
  EXPECT_THAT(excel.registered, IsEmpty());
  EXPECT_THAT(excel.hiddenNames, IsEmpty());
  EXPECT_EQ(CXllApp::AutoRemove(), 1);
  EXPECT_EQ(CXllApp::AutoClose(), 1);
  EXPECT_THAT(app.events, ElementsAre("OnAutoAdd", "OnBeforeOpen", "Open", "OnOpened", "OnAutoRemove", "OnClose"));

  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_EQ(excel.registered.size(), app.Registrables().size());
}

TEST_F(Lifecycle, LearnsVersionAndLocalSettings) {
  struct Case {
    XString version;
    bool coerces;
    int expected;
  };
  for (const Case& example : {Case{XTEXT("16.0"), true, 16}, Case{XTEXT("16.0"), false, 16},
                              Case{XTEXT("11.0"), true, 11}, Case{XTEXT("beta"), false, 0}}) {
    TestApp app;
    excel.version = example.version;
    excel.coercesVersion = example.coerces;
    EXPECT_EQ(CXllApp::AutoOpen(), 1);
    EXPECT_EQ(CurrentExcelSettings().version, example.expected);
    EXPECT_EQ(CurrentExcelSettings().excel12OrLater, example.expected >= 12);
    EXPECT_EQ(CurrentExcelSettings().rowLetter, XTEXT('Z'));
    EXPECT_EQ(CurrentExcelSettings().columnLetter, XTEXT('S'));
    EXPECT_EQ(DecimalSeparator(), XTEXT(','));
    excel.unregisterSteps.clear();
    CXllApp::AutoRemove();
    EXPECT_EQ(excel.unregisterSteps.size(), app.Registrables().size() * (example.expected >= 12 ? 4 : 1));
    excel.registered.clear();
  }
}

TEST_F(Lifecycle, WithoutAnInstanceTheUserIsTold) {
  EXPECT_EQ(CXllApp::AutoOpen(), 0);
  EXPECT_THAT(excel.alerts, ElementsAre(XTEXT("Unexpected error during initialization:\n"
                                              "No instance of CXllApp has been instantiated.\n"
                                              "Add-in will not be opened")));
  EXPECT_THAT(excel.alertKinds, ElementsAre(3));
  EXPECT_EQ(CXllApp::AutoClose() + CXllApp::AutoRemove() + CXllApp::CheckInstance(), 3);
  EXPECT_EQ(CXllApp::AutoAdd(), 0);
}

TEST_F(Lifecycle, AFailureNamesTheAddInAndLeavesNothingRegistered) {
  ThrowingHook hook;
  const XString beginning = XTEXT("Unexpected error during initialization:\nthe hook broke\n");
  {
    TestApp app;
    app.AddOpenHook(hook);
    EXPECT_EQ(CXllApp::AutoOpen(), 0);
    EXPECT_FALSE(CXllApp::IsOpened());
    EXPECT_EQ(excel.alerts.back(), beginning + XTEXT("Quillmere4 will not be opened"));
    app.moduleName = XTEXT("The module");
    EXPECT_EQ(CXllApp::AutoOpen(), 0) << "a failed opening may be tried again";
    EXPECT_EQ(excel.alerts.back(), beginning + XTEXT("The module will not be opened"));
    EXPECT_EQ(excel.Calls(xlfRegister), 0);
  }
  TestApp app;
  excel.On(xlGetName, [](auto, XLOPER12&) { return xlretFailed; });
  EXPECT_EQ(CXllApp::AutoOpen(), 0);
  EXPECT_EQ(excel.alerts.back(), XTEXT("Unexpected error during initialization:\n"
                                       "Excel API call xlGetName failed with error code 32\n"
                                       "Add-in will not be opened"));
}

TEST_F(Lifecycle, OpeningRefusedByTheAddInShowsNothing) {
  TestApp app;
  app.openAnswer = false;
  EXPECT_EQ(CXllApp::AutoOpen(), 0);
  EXPECT_THAT(excel.alerts, IsEmpty());
  EXPECT_EQ(excel.Calls(xlfRegister), 0);
}

TEST_F(Lifecycle, FailedRegistrationsAreTheUsersDecision) {
  excel.refused = {XTEXT("TEST.FIRST"), XTEXT("TEST.SECOND")};
  {
    TestApp app;
    EXPECT_EQ(CXllApp::AutoOpen(), 0);
    EXPECT_EQ(app.questions.front(), XTEXT("The following functions in Quillmere4 failed to register:\n\n"
                                           "TEST.SECOND\nTEST.FIRST\n"
                                           "Do you wish to continue loading the add-in?"));
    EXPECT_THAT(excel.registered, IsEmpty()) << "No takes back what was registered";
    EXPECT_EQ(excel.registerCalls.size(), app.Registrables().size()) << "a failure does not stop the others";
  }
  TestApp app;
  app.questionAnswer = true;
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_EQ(excel.registered.size(), app.Registrables().size() - 2);
  CXllApp::AutoRemove();
  EXPECT_THAT(excel.registered, IsEmpty());
}

// Whichever callback fails, what Excel lent is given back (the fake Excel counts), and what is registered is registered
// only while the add-in is open.
TEST_F(Lifecycle, SurvivesTheFailureOfEachCallback) {
  int calls = 0;
  {
    TestApp app;
    CXllApp::AutoOpen();
    CXllApp::AutoRemove();
    calls = excel.AllCalls();
  }
  ASSERT_GT(calls, 8);
  for (int failing = 1; failing <= calls; ++failing) {
    AddinExcel failingExcel;
    failingExcel.FailCall(failing);
    TestApp app;
    const int result = CXllApp::AutoOpen();
    EXPECT_EQ(CXllApp::IsOpened(), result == 1) << failing;
    if (result == 0) {
      EXPECT_EQ(failingExcel.alerts.size() + app.questions.size(), 1u) << failing;
      EXPECT_THAT(failingExcel.registered, IsEmpty()) << failing;
    } else {
      CXllApp::AutoRemove();
      EXPECT_LE(failingExcel.registered.size(), 1u) << "one unregistering may have failed: " << failing;
    }
    EXPECT_EQ(CXllApp::AutoClose(), 1);
  }
}

TEST_F(Lifecycle, HelpFileStandsBesideTheAddIn) {
  {
    TestApp app;
    CXllApp::AutoOpen();
    EXPECT_EQ(app.HelpFilePath(), XTEXT("C:\\AddIns\\Quillmere4.chm"));
  }
  {
    TestApp app;
    excel.path = XTEXT("xll");
    CXllApp::AutoOpen();
    EXPECT_EQ(app.HelpFilePath(), XTEXT(""));
    CXllApp::AutoRemove();
  }
  CQuillmere4App app;
  excel.path = XTEXT("C:\\Other place\\renamed.xll");
  CXllApp::AutoOpen();
  EXPECT_EQ(app.HelpFilePath(), XTEXT("C:\\Other place\\Quillmere4.chm"));
  EXPECT_EQ(excel.registerCalls.back()[6].AsText(), XTEXT("Quillmere_V4_Tarnwick_Functions"));
}

using Events = std::vector<std::string>;

struct NotingRibbon : IXlpRibbonImpl {
  explicit NotingRibbon(Events& eventsOfTest) : events(eventsOfTest) {}
  Events& events;
  bool wanted = true;
  bool reachable = true;

  bool WantsConnection() const override { return wanted; }
  bool SetWantsConnection(bool value) override { return std::exchange(wanted, value); }
  bool IsExcel12OrLater() const override { return true; }
  bool Connect() override {
    events.push_back("ribbon on");
    return reachable;
  }
  void Disconnect() override { events.push_back("ribbon off"); }
  void SendNothing() override {}
  void SendTitle() override { events.push_back("ribbon starts"); }
  void SendNumber(double) override {}
};

struct NotingCom : IXllCom {
  explicit NotingCom(Events& eventsOfTest) : events(eventsOfTest) {}
  Events& events;
  bool eventsFail = false;
  bool connected = false;
  IXlpRibbonImpl* ribbon = nullptr;

  bool IsInitialised() const override { return true; }
  bool IsConnected() const override { return connected; }
  void Connect() override {
    EXPECT_FALSE(std::exchange(connected, true)) << "twice in one life";
    events.push_back("com on");
  }
  void ConnectEvents(XStringView name) override {
    EXPECT_EQ(name, XTEXT("Quillmere4"));
    events.push_back("events on");
    if (eventsFail) throw CXlComException(XTEXT("Invoke"), -1);
  }
  void DisconnectAndUninitialise() override {
    connected = false;
    events.push_back("com off");
  }
  void AttachRibbon(IXlpRibbonImpl* attached) override { ribbon = attached; }
  IXlpRibbonImpl* AttachedRibbon() const override { return ribbon; }
};

struct NotingObserver : IXllObserver {
  explicit NotingObserver(Events& eventsOfTest) : events(eventsOfTest) {}
  Events& events;

  std::unique_ptr<CXllRegistrable> CreateCommand(XStringView name) override {
    RegistrationTexts texts;
    texts.procedure = XTEXT("observer_12");
    texts.name = XTEXT("xll_") + XString(name) + XTEXT("_observer");
    texts.macroType = MacroType::kCommand;
    return std::make_unique<CXllRegistrable>(std::move(texts));
  }
  void MarkLive() override { events.push_back("observer live"); }
};

TEST_F(Lifecycle, ConnectsAndDisconnectsWhatExcelOffersBeyondItsApi) {
  Events events;
  NotingRibbon ribbon(events);
  NotingCom com(events);
  NotingObserver observer(events);
  TestApp app;
  app.SetRibbon(ribbon);
  app.SetCom(com);
  app.SetObserver(observer);

  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_THAT(events, ElementsAre("ribbon on", "ribbon starts", "com on", "events on"));
  EXPECT_EQ(excel.registerCalls.back()[3].AsText(), XTEXT("xll_Quillmere4_observer"));
  EXPECT_EQ(CXllApp::CheckInstance(), 1);
  CXllApp::AutoRemove();
  EXPECT_THAT(excel.registered, IsEmpty()) << "the observer too";
  events.clear();
  CXllApp::AutoClose();
  EXPECT_THAT(events, ElementsAre("ribbon off", "com off"));
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  events.clear();
  CXllApp::AutoRemove();
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_THAT(events, ElementsAre("ribbon off", "com off", "ribbon on", "ribbon starts", "com on", "events on"));
  CXllApp::AutoClose();

  events.clear();
  ribbon.reachable = false;
  com.eventsFail = true;
  EXPECT_EQ(CXllApp::AutoOpen(), 0);
  EXPECT_THAT(events, ElementsAre("ribbon on", "com on", "events on", "com off"));
  EXPECT_THAT(excel.registered, IsEmpty());
  EXPECT_EQ(excel.alerts.size(), 1u);
}

TEST_F(Lifecycle, AddInManagerGetsTheLongNameForActionOne) {
  CQuillmere4App app;
  XLOPER12 action = NumberCell(1);
  for (int time = 0; time < 2; ++time) {
    const XLOPER12* const answer = CXllApp::AddInManagerInfo12(&action);
    EXPECT_EQ(answer->xltype, xltypeStr | xlbitDLLFree);
    EXPECT_EQ(CellText(*answer), XTEXT("Quillmere V4 array functions"));
  }
  ReleaseOwned(*CXllApp::AddInManagerInfo12(&action));
  XLOPER12 text = EmptyCell();
  CXlOper::Text(XTEXT("1")).ReturnInto(text);
  for (XLOPER12 other : {NumberCell(2), MissingCell(), text}) {
    const XLOPER12* const answer = CXllApp::AddInManagerInfo12(&other);
    EXPECT_EQ(answer->xltype, xltypeErr);
    EXPECT_EQ(answer->val.err, xlerrValue);
  }
  ReleaseOwned(text);
  EXPECT_EQ(CXllApp::AddInManagerInfo12(nullptr)->xltype, xltypeErr);

  XLOPER action4{};
  action4.val.num = 1;
  action4.xltype = xltypeNum;
  EXPECT_EQ(CXllApp::AddInManagerInfo4(&action4)->xltype, xltypeErr) << "there is no 8-bit Excel here";
  EXPECT_EQ(CXllApp::AddInManagerInfo4(nullptr)->val.err, xlerrValue);
}

TEST_F(Lifecycle, CallbacksReachTheFirstEntryHandedOver) {
  InstallExcel12Entry([](int, int, XLOPER12**, XLOPER12*) -> int { return xlretAbort; });
  CXlOper name;
  EXPECT_EQ(TryCallExcel(name, xlGetName), xlretSuccess);
  EXPECT_EQ(name.AsText(), excel.path);

  excel.On(xlGetName, [](auto, XLOPER12&) { return xlretFailed; });
  EXPECT_EQ(TryCallExcel(name, xlGetName), xlretFailed);
  EXPECT_FALSE(name.IsSet()) << "what an earlier call returned is gone";
  EXPECT_THROW(CallExcel(xlGetName), CXlRuntimeException);

  excel.On(xlGetName, [](auto, XLOPER12& result) {
    result.xltype = xltypeInt | 0x2000;
    return xlretSuccess;
  });
  EXPECT_EQ(TryCallExcel(name, xlGetName), xlretFailed) << "a malformed answer is none";
}

}  // namespace
}  // namespace quillmere::testing
