// What Excel is told about a function.
#include "frame/registration/registration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/callbacks/excel_settings.h"
#include "tests/unit/fixtures/addin_excel.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr XStringView kPath = XTEXT("C:\\a.xll");
constexpr XStringView kHelpFile = XTEXT("C:\\a.chm");

TEST(Registration, CutsTextsInTheCallAlone) {
  AddinExcel excel;
  const XString help = XString(254, XTEXT('x')) + XTEXT("\xD83D\xDE00 and more");
  CXllRegistrable item({.name = XTEXT("F"), .help = help, .argumentHelp = {300, XString(300, XTEXT('y'))}});
  item.Register(kPath, {});
  const std::vector<CXlOper>& call = excel.registerCalls.front();
  EXPECT_EQ(call[9].AsText(), XString(254, XTEXT('x'))) << "not within a surrogate pair";
  EXPECT_EQ(call[10].AsText().size(), 255u);
  EXPECT_EQ(call.size(), 255u);
  EXPECT_EQ(call.back().AsText(), XTEXT(""));
  EXPECT_EQ(item.Texts().help, help);
}

TEST(Registration, HelpTopicNeedsFileIdAndRoom) {
  EXPECT_EQ(HelpTopic(kHelpFile, 7), XTEXT("C:\\a.chm!7"));
  EXPECT_EQ(HelpTopic(kHelpFile, 0), XTEXT(""));
  EXPECT_EQ(HelpTopic({}, 7), XTEXT(""));
  EXPECT_EQ(HelpTopic(XString(253, XTEXT('p')), 7).size(), 255u);
  EXPECT_EQ(HelpTopic(XString(254, XTEXT('p')), 7), XTEXT(""));
}

TEST(Registration, UnregistersInFourStepsFromExcel12On) {
  AddinExcel excel;
  CXllRegistrable item({.name = XTEXT("F")});
  item.Register(kPath, kHelpFile);
  item.Unregister(kPath, true);
  item.Unregister(kPath, true);
  EXPECT_THAT(excel.unregisterSteps,
              ElementsAre(XTEXT("unregister F"), XTEXT("register F"), XTEXT("delete F"), XTEXT("unregister F")));
  item.Register(kPath, kHelpFile);
  item.Unregister(kPath, false);
  EXPECT_THAT(excel.registered, IsEmpty());
  EXPECT_EQ(excel.unregisterSteps.size(), 5u) << "one step before";
}

}  // namespace
}  // namespace quillmere::testing
