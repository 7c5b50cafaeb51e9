// What Excel is told about a function.
#include "frame/registration/registration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/callbacks/excel_settings.h"
#include "frame/registration/type_text.h"
#include "tests/unit/fixtures/addin_excel.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ArgumentDeclaration kArguments[] = {
    {.name = XTEXT("TheRange"), .kind = ArgumentKind::kReference, .help = XTEXT("A valid Range Reference")},
    {.name = XTEXT("Count"), .kind = ArgumentKind::kInt},
};
constexpr FunctionDeclaration kFunction{.procedure = "TEST_DO_IT",
                                        .name = XTEXT("TEST.DO.IT"),
                                        .category = 5,
                                        .flags = kThreadSafe,
                                        .helpId = 1102,
                                        .help = XTEXT("Does it"),
                                        .arguments = kArguments};
constexpr XStringView kPath = XTEXT("C:\\a.xll");
constexpr XStringView kHelpFile = XTEXT("C:\\a.chm");

const CXllFunctionRecord record(kFunction);

TEST(Registration, CutsTextsInTheCallAlone) {
  AddinExcel excel;
  RegistrationTexts texts;
  texts.name = XTEXT("F");
  texts.help = XString(254, XTEXT('x')) + XTEXT("\xD83D\xDE00 and more");
  texts.argumentHelp.assign(300, XString(300, XTEXT('y')));
  CXllRegistrable item(texts);
  item.Register(kPath, {});
  const std::vector<CXlOper>& call = excel.registerCalls.front();
  EXPECT_EQ(call[9].AsText(), XString(254, XTEXT('x'))) << "not within a surrogate pair";
  EXPECT_EQ(call[10].AsText().size(), 255u);
  EXPECT_EQ(call.size(), 255u);
  EXPECT_EQ(call.back().AsText(), XTEXT(""));
  EXPECT_EQ(item.Texts().help, texts.help);
}

TEST(Registration, HelpTopicNeedsFileIdAndRoom) {
  EXPECT_EQ(HelpTopic(kHelpFile, 7), XTEXT("C:\\a.chm!7"));
  EXPECT_EQ(HelpTopic(kHelpFile, 0), XTEXT(""));
  EXPECT_EQ(HelpTopic({}, 7), XTEXT(""));
  EXPECT_EQ(HelpTopic(XString(253, XTEXT('p')), 7).size(), 255u);
  EXPECT_EQ(HelpTopic(XString(254, XTEXT('p')), 7), XTEXT(""));
}

TEST(Registration, OnlyANumberIsSuccess) {
  AddinExcel excel;
  CXllFunction function(record);
  excel.refused = {XTEXT("TEST.DO.IT")};
  function.Register(kPath, kHelpFile);
  EXPECT_EQ(function.GetState(), CXllRegistrable::State::kFailed);
  function.Unregister(kPath, true);
  EXPECT_THAT(excel.unregisterSteps, IsEmpty());
  excel.Fail(xlfRegister, xlretFailed);
  function.Register(kPath, kHelpFile);
  EXPECT_EQ(function.GetState(), CXllRegistrable::State::kFailed);
}

TEST(Registration, UnregistersInFourStepsFromExcel12On) {
  AddinExcel excel;
  CXllFunction function(record);
  function.Register(kPath, kHelpFile);
  function.Unregister(kPath, true);
  EXPECT_THAT(excel.unregisterSteps, ElementsAre(XTEXT("unregister TEST.DO.IT"), XTEXT("register TEST.DO.IT"),
                                                 XTEXT("delete TEST.DO.IT"), XTEXT("unregister TEST.DO.IT")));
  EXPECT_THAT(excel.registered, IsEmpty());
  function.Unregister(kPath, true);
  EXPECT_EQ(excel.unregisterSteps.size(), 4u) << "what is not registered is left alone";

  excel.unregisterSteps.clear();
  function.Register(kPath, kHelpFile);
  function.Unregister(kPath, false);
  EXPECT_THAT(excel.unregisterSteps, ElementsAre(XTEXT("unregister TEST.DO.IT")));
}

TEST(TypeText, FollowsKindsDefaultsAndMarks) {
  const auto argument = [](ArgumentKind kind, bool hasDefault, bool byValue = false) {
    return ArgumentDeclaration{
        .name = XTEXT("A"), .kind = kind, .defaultValue = {.type = hasDefault ? xltypeNum : 0u}, .byValue = byValue};
  };
  using enum ArgumentKind;
  const ArgumentDeclaration all[] = {argument(kReference, true), argument(kValue, false),    argument(kInt, false),
                                     argument(kInt, true),       argument(kInt, true, true), argument(kString, false),
                                     argument(kString, true),    argument(kBoolean, false),  argument(kBoolean, true),
                                     argument(kShort, false),    argument(kDouble, false)};
  FunctionDeclaration function{.arguments = all};
  EXPECT_EQ(TypeText12(function), "UUQJQJC%QAQQQ");
  EXPECT_EQ(TypeText4(function), "RRPJPJCPAPPP");
  EXPECT_EQ(ArgumentText(function), XTEXT("A,A,A,A,A,A,A,A,A,A,A"));

  FunctionDeclaration bare{};
  EXPECT_EQ(ArgumentText(bare), XTEXT(""));
  bare.flags = kVolatile | kMacroSheet;
  EXPECT_EQ(TypeText12(bare), "U!#");
  bare.flags = kThreadSafe | kFrameworkMark32;
  EXPECT_EQ(TypeText12(bare), "U$");
}

}  // namespace
}  // namespace quillmere::testing
