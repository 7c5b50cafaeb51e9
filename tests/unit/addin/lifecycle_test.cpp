// Opening, closing and removing the add-in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "addin/quillmere4_app.h"
#include "frame/callbacks/callbacks.h"
#include "tests/unit/fixtures/addin_excel.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr FunctionDeclaration kFirst{.procedure = "TEST_FIRST", .name = XTEXT("TEST.FIRST")};
constexpr FunctionDeclaration kSecond{.procedure = "TEST_SECOND", .name = XTEXT("TEST.SECOND")};
const CXllFunctionRecord firstRecord(kFirst);
const CXllFunctionRecord secondRecord(kSecond);

using Events = std::vector<std::string>;

/// What the add-in did, and had others do, since the last look.
Events events;

struct TestApp : CXllApp {
  bool questionAnswer = false;
  XString moduleName;
  std::vector<XString> questions;

  void OnAutoAdd() override { events.push_back("OnAutoAdd"); }
  void OnAutoRemove() override { events.push_back("OnAutoRemove"); }
  void OnBeforeOpen() override { events.push_back("OnBeforeOpen"); }
  void OnClose() override { events.push_back("OnClose"); }
  void OnOpened() override { events.push_back("OnOpened"); }
  XString GetModuleName() const override { return moduleName; }
  bool AskYesNo(const XString& text, const XString& caption) override {
    EXPECT_EQ(caption, XTEXT("Add-in Load Failure"));
    questions.push_back(text);
    return questionAnswer;
  }
};

struct Hook : IXllOpenHook, IXllCloseHook {
  std::string failure;
  void OnOpen(const CXllOpenContext& context) override {
    EXPECT_EQ(context.name, XTEXT("Quillmere4"));
    EXPECT_EQ(context.excel.version, 16);
    if (!failure.empty()) throw std::runtime_error(failure);
    events.push_back("hook opens");
  }
  void OnClose() override {
    events.push_back("hook closes");
    throw std::runtime_error("must not keep the others from closing");
  }
};

struct Ribbon : IXlpRibbonImpl {
  bool reachable = true;
  bool WantsConnection() const override { return true; }
  bool SetWantsConnection(bool) override { return true; }
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

struct Com : IXllCom {
  bool eventsFail = false;
  bool initialised = false;
  IXlpRibbonImpl* ribbon = nullptr;

  void Initialise() override {
    EXPECT_FALSE(std::exchange(initialised, true)) << "twice in one life";
    events.push_back("com starts");
  }
  bool IsInitialised() const override { return initialised; }
  void Connect() override { events.push_back("com on"); }
  void ConnectEvents(XStringView name) override {
    EXPECT_EQ(name, XTEXT("Quillmere4"));
    if (eventsFail) throw CXlComException(XTEXT("Invoke"), -1);
    events.push_back("events on");
  }
  void DisconnectAndUninitialise(bool removed) override {
    initialised = false;
    events.push_back(removed ? "com off" : "com off but for functions");
  }
  void AttachRibbon(IXlpRibbonImpl* attached) override { ribbon = attached; }
  IXlpRibbonImpl* AttachedRibbon() const override { return ribbon; }
};

struct Observer : IXllObserver {
  std::unique_ptr<CXllRegistrable> CreateCommand(XStringView name) override {
    return std::make_unique<CXllRegistrable>(RegistrationTexts{
        .procedure = XTEXT("observer_12"), .name = XTEXT("xll_") + XString(name), .macroType = MacroType::kCommand});
  }
  void MarkLive() override { events.push_back("observer live"); }
  void End() override { events.push_back("observer ends"); }
};

class Lifecycle : public ::testing::Test {
 protected:
  Lifecycle() { events.clear(); }
  ~Lifecycle() override { CXllApp::SetFormulaMemoryClearer(nullptr); }

  AddinExcel excel;
};

TEST_F(Lifecycle, EachOpeningAndClosingIsWhole) {
  Hook hook;
  Ribbon ribbon;
  Com com;
  Observer observer;
  TestApp app;
  app.AddOpenHook(hook);
  app.AddCloseHook(hook);
  app.SetRibbon(ribbon);
  app.SetCom(com);
  app.SetObserver(observer);
  CXllApp::SetFormulaMemoryClearer([] { events.push_back("memory cleared"); });
  const auto happened = [] { return std::exchange(events, {}); };
  const Events opening = {"OnBeforeOpen",  "com starts", "hook opens", "ribbon on",
                          "ribbon starts", "com on",     "events on",  "OnOpened"};
  const Events closing = {"ribbon off",    "hook closes",   "OnClose", "com off but for functions",
                          "observer ends", "memory cleared"};

  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_EQ(CXllApp::AutoOpen(), 0) << "it is open";
  EXPECT_EQ(happened(), opening);
  EXPECT_EQ(excel.registerCalls.back()[3].AsText(), XTEXT("xll_Quillmere4"));
  EXPECT_EQ(CXllApp::AutoClose() + CXllApp::AutoClose(), 2);
  EXPECT_EQ(happened(), closing);
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  EXPECT_EQ(happened(), opening);
  EXPECT_THAT(excel.unregisterSteps, IsEmpty()) << "cells in use would lose the name";
  EXPECT_EQ(CXllApp::AutoRemove() + CXllApp::AutoRemove(), 2);
  EXPECT_THAT(happened(), ElementsAre("OnAutoRemove"));
  EXPECT_EQ(CXllApp::AutoOpen() + CXllApp::AutoClose(), 2);
  Events both = {"ribbon off", "hook closes", "OnClose", "com off", "observer ends", "memory cleared"};
  both.insert(both.end(), opening.begin(), opening.end());
  both.insert(both.end(), closing.begin(), closing.end());
  EXPECT_EQ(happened(), both) << "a removal alone leaves the old life to be closed";
  EXPECT_EQ(CXllApp::AutoAdd() + CXllApp::CheckInstance(), 2);
  EXPECT_THAT(happened(), ElementsAre("OnAutoAdd", "observer live"));

  ribbon.reachable = false;
  com.eventsFail = true;
  EXPECT_EQ(CXllApp::AutoOpen(), 0);
  EXPECT_THAT(happened(), ElementsAre("OnBeforeOpen", "com starts", "hook opens", "ribbon on", "com on", "hook closes",
                                      "com off", "observer ends"));
  EXPECT_THAT(excel.registered, IsEmpty());
  EXPECT_EQ(excel.alerts.size(), 1u);
}

TEST_F(Lifecycle, LearnsVersionAndLocalSettings) {
  const std::tuple<XString, bool, int> cases[] = {
      {XTEXT("12.0"), true, 12}, {XTEXT("16.0"), false, 16}, {XTEXT("11.0"), true, 11}, {XTEXT("beta"), false, 0}};
  for (const auto& [version, coerces, expected] : cases) {
    TestApp app;
    excel.version = version;
    excel.coercesVersion = coerces;
    EXPECT_EQ(CXllApp::AutoOpen(), 1);
    EXPECT_EQ(CurrentExcelSettings().version, expected);
    EXPECT_EQ(CurrentExcelSettings().rowLetter, XTEXT('Z'));
    EXPECT_EQ(CurrentExcelSettings().columnLetter, XTEXT('S'));
    EXPECT_EQ(DecimalSeparator(), XTEXT(','));
    excel.unregisterSteps.clear();
    CXllApp::AutoRemove();
    EXPECT_EQ(excel.unregisterSteps.size(), app.Registrables().size() * (expected >= 12 ? 4 : 1));
    excel.registered.clear();
  }
}

TEST_F(Lifecycle, TheUserIsToldWhyItDoesNotOpen) {
  const XString beginning = XTEXT("Unexpected error during initialization:\n");
  const auto expectAlert = [&](const XString& rest) {
    EXPECT_EQ(CXllApp::AutoOpen(), 0);
    EXPECT_EQ(excel.alerts.back(), beginning + rest);
  };
  expectAlert(XTEXT("No instance of CXllApp has been instantiated.\nAdd-in will not be opened"));
  EXPECT_EQ(CXllApp::AutoClose() + CXllApp::AutoRemove() + CXllApp::CheckInstance() + CXllApp::AutoAdd(), 3);

  TestApp app;
  excel.Fail(xlGetName, xlretAbort);
  expectAlert(XTEXT("Excel API call xlGetName failed with error code 1\nAdd-in will not be opened"));
  excel.Give(xlGetName, [this] { return excel.LendText(excel.path); });
  Hook hook;
  hook.failure = "the hook broke";
  app.AddOpenHook(hook);
  expectAlert(XTEXT("the hook broke\nQuillmere4 will not be opened"));
  hook.failure.assign(300, 'x');
  app.moduleName = XTEXT("The module");
  const XString end = XTEXT("\nThe module will not be opened");
  expectAlert(XString(219 - beginning.size() - end.size(), XTEXT('x')) + end);
  EXPECT_EQ(excel.Calls(xlfRegister), 0);
}

TEST_F(Lifecycle, FailedRegistrationsAreTheUsersDecision) {
  excel.refused = {XTEXT("TEST.FIRST"), XTEXT("TEST.SECOND")};
  TestApp app;
  EXPECT_EQ(CXllApp::AutoOpen(), 0);
  EXPECT_THAT(app.questions, ElementsAre(XTEXT("The following functions in Quillmere4 failed to register:\n\n"
                                               "TEST.SECOND\nTEST.FIRST\n"
                                               "Do you wish to continue loading the add-in?")));
  EXPECT_THAT(excel.registered, IsEmpty()) << "No takes back what was registered";
  EXPECT_EQ(excel.registerCalls.size(), app.Registrables().size()) << "a failure does not stop the others";
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
  const auto helpFile = [this](auto app, const XString& path) {
    excel.path = path;
    CXllApp::AutoOpen();
    return XString(app->HelpFilePath());
  };
  EXPECT_EQ(helpFile(std::make_unique<TestApp>(), XTEXT("C:\\a.b\\Any.xll")), XTEXT("C:\\a.b\\Any.chm"));
  EXPECT_EQ(helpFile(std::make_unique<TestApp>(), XTEXT("xll")), XTEXT(""));
  EXPECT_EQ(helpFile(std::make_unique<CQuillmere4App>(), XTEXT("C:/Other/renamed.xll")),
            XTEXT("C:/Other\\Quillmere4.chm"));
}

TEST_F(Lifecycle, CallbacksReachTheFirstEntryHandedOver) {
  InstallExcel12Entry([](int, int, XLOPER12**, XLOPER12*) -> int { return xlretFailed; });
  CXlOper name;
  EXPECT_EQ(TryCallExcel(name, xlGetName), xlretSuccess);
  EXPECT_EQ(name.AsText(), excel.path);
  excel.Give(xlGetName, [] { return XLOPER12{.val = {}, .xltype = xltypeInt | 0x2000}; });
  EXPECT_EQ(TryCallExcel(name, xlGetName), xlretFailed) << "a malformed answer is none";
  EXPECT_FALSE(name.IsSet()) << "what an earlier call returned is gone";
  EXPECT_THROW(CallExcel(xlGetName), CXlRuntimeException);
}

}  // namespace
}  // namespace quillmere::testing
