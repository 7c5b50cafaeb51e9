// What the ribbon server is told and what it gets for an event.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "addin/quillmere4_app.h"
#include "excel/ribbon/shared_ribbon.h"
#include "exports.h"
#include "frame/values/value_memory.h"
#include "tests/unit/fixtures/fake_excel.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;

struct RibbonApp : CXllApp {
  XString GetModuleName() const override { return XTEXT("The module"); }
  XString GetTitle() const override { return XTEXT("The title"); }
  CXlOper OnRibbonCallback(std::int32_t callback, XStringView id, XStringView tag, std::int32_t index, XStringView text,
                           XStringView selectedId, bool pressed) override {
    EXPECT_EQ(std::tuple(callback, index, pressed), std::tuple(3, -1, true));
    return CXlOper::Text(XString(id) + XTEXT('|') + XString(tag) + XTEXT('|') + XString(text) + XTEXT('|') +
                         XString(selectedId));
  }
};

TEST(Ribbon, TheServerIsToldOneTopicAnOperation) {
  FakeExcel excel;
  std::vector<XString> told;
  bool isThere = true;
  excel.On(xlfRtd, [&](std::span<XLOPER12* const> arguments, XLOPER12& result) {
    EXPECT_EQ(CXlOper::Borrow(arguments[0]).AsText(), XTEXT("XlpRibbonServer.XlpRtdRibbonServer"));
    EXPECT_TRUE(CXlOper::Borrow(arguments[1]).IsAbsent());
    EXPECT_EQ(CXlOper::Borrow(arguments[2]).AsText(), XTEXT("The module"));
    const CXlOper topic = arguments.size() > 3 ? CXlOper::Borrow(arguments[3]) : CXlOper::Text(XTEXT("none"));
    told.push_back(topic.IsNumber() ? XString(XTEXT("a number")) : XString(topic.AsText()));
    result.xltype = isThere ? xltypeNil : xltypeErr;
    result.val.err = xlerrNA;
    return xlretSuccess;
  });
  RibbonApp app;
  CXlpRibbonImplShared ribbon;
  EXPECT_TRUE(ribbon.SetWantsConnection(false)) << "it wants to be connected unless told otherwise";
  EXPECT_FALSE(ribbon.WantsConnection());
  EXPECT_TRUE(ribbon.Connect());
  ribbon.SendTitle();
  ribbon.SendNothing();
  ribbon.SendNumber(7);
  ribbon.Disconnect();
  EXPECT_THAT(told, ElementsAre(XTEXT("<"), XTEXT("The title"), XTEXT("none"), XTEXT("a number"), XTEXT(">")));
  isThere = false;
  EXPECT_FALSE(ribbon.Connect());
  excel.Fail(xlfRtd, xlretFailed);
  EXPECT_FALSE(ribbon.Connect());
}

TEST(Ribbon, AnEventReachesTheApplicationObjectThroughBothInterfaces) {
  RibbonApp app;
  XLOPER12* const wide = RibbonCallback_12(3, XTEXT("the id"), nullptr, -1, XTEXT(""), XTEXT("selected"), 1);
  EXPECT_EQ(CXlOper::Borrow(wide).AsText(), XTEXT("the id|||selected"));
  ReleaseOwned(*wide);
  const XLOPER* const narrow = RibbonCallback_4(3, "i", "t", -1, nullptr, "", 1);
  EXPECT_EQ(std::string(narrow->val.str + 1, 5), "i|t||");
}

}  // namespace
}  // namespace quillmere::testing
