// What the extension of the Function Arguments dialog goes by.
#include <gtest/gtest.h>

#include "excel/wizard/dialog_arguments.h"
#include "excel/wizard/formula_wizard_detector.h"

namespace quillmere {
namespace {

XString reports;

CXlWizExUIFunctionRegistry Declared() {
  CXlWizExUIFunctionRegistry registry([](XStringView text) { reports += XString(text) + XTEXT('\n'); });
  registry.AddDeclared();
  return registry;
}

/// All lists, a line an entry.
XString ListsOf(const CXlWizExUIFunctionRegistry& registry, XStringView function) {
  XString all;
  for (std::size_t i = 0; i < registry.Find(function)->ArgumentCount(); ++i)
    if (const auto* const list = registry.Find(function)->List(i))
      for (const WizardListEntry& entry : list->Entries())
        all += XString(1, static_cast<XCHAR>('0' + i)) + XTEXT(": ") + ShownEntry(entry) + XTEXT('\n');
  return all;
}

TEST(Wizard, HasTheListsOfTheFunctions) {
  auto registry = Declared();
  EXPECT_EQ(ListsOf(registry, XTEXT("MEMLOOKUP")),
            XTEXT("3: -1  Lookup_Array is sorted descending\n3: 0  Lookup_Array is not sorted\n")
                XTEXT("3: 1  Lookup_Array is sorted ascending\n")
                    XTEXT("5: 0  Guess Orientation\n5: 1  Vertical Lookup\n5: 2  Horizonatl Lookup\n"));
  EXPECT_EQ(ListsOf(registry, XTEXT("MEMMATCH")),
            XTEXT("4: 0  Guess Orientation\n4: 1  Vertical Lookup\n4: 2  Horizonatl Lookup\n"));
  EXPECT_EQ(registry.Find(XTEXT("AVLOOKUP2")), nullptr);
  const CXlWizExUIListProvider& orientation = *registry.Find(XTEXT("MEMMATCH"))->List(4);
  EXPECT_EQ(orientation.EntryOf(XTEXT(" 2")), 2u);
  EXPECT_EQ(orientation.EntryOf(XTEXT("")), 1u) << "the default";
  EXPECT_EQ(orientation.EntryOf(XTEXT("A1")), std::nullopt);

  static constexpr ArgumentChoice kChoices[] = {{1, XTEXT("One")}};
  static constexpr ArgumentDeclaration kArguments[] = {{.name = XTEXT("Which"), .choices = kChoices}};
  FunctionDeclaration broken{.name = XTEXT("BROKEN"), .arguments = kArguments};
  registry.Add(broken, XTEXT("{BROKEN"));
  EXPECT_EQ(reports, XTEXT("No lists in the function wizard for BROKEN: at 7 of its descriptor: expected , or }\n"));
  broken.macroType = MacroType::kCommand;
  registry.Add(broken, WriteDescriptor(broken));
  EXPECT_EQ(registry.Find(XTEXT("BROKEN")), nullptr);
}

TEST(Wizard, TellsItsDialogFromOthers) {
  const WindowFacts dialog{.processId = 7,
                           .ownProcessId = 7,
                           .parent = 0x50001,
                           .excelWindow = 0x60001,
                           .className = XTEXT("bosa_sdm_XL9"),
                           .title = XTEXT("Function Arguments"),
                           .excelVersion = 16};
  const auto isWizard = [&dialog](auto WindowFacts::*fact, auto value, int version = 16) {
    WindowFacts other = dialog;
    other.*fact = value;
    other.excelVersion = version;
    return CXlFormulaWizardDetector::IsWizard(other);
  };
  EXPECT_TRUE(isWizard(&WindowFacts::title, XStringView(XTEXT("Funktionsargumente"))));
  for (const XStringView title :
       {XTEXT("Find and Replace"), XTEXT("Go To"), XTEXT("Insert Function"), XTEXT("New Name")})
    EXPECT_FALSE(isWizard(&WindowFacts::title, title));
  EXPECT_FALSE(isWizard(&WindowFacts::className, XStringView(XTEXT("bosa_sdm_Mso96"))));
  for (const int version : {14, 15}) {
    EXPECT_EQ(isWizard(&WindowFacts::processId, 8, version), version < 15);
    EXPECT_EQ(isWizard(&WindowFacts::parent, 0x50002, version), version >= 15);
  }
}

TEST(Wizard, KnowsTheArgumentsOfTheBoxes) {
  const auto registry = Declared();
  DialogFacts dialog{.texts = {{XTEXT("Function Arguments"), {}}, {XTEXT("MEMLOOKUP"), {0, 0, 400, 200}}},
                     .boxes = {{100, 60, 200, 80}, {100, 20, 200, 40}},
                     .hasScrollBar = true,
                     .first = 4};
  using Positions = std::vector<std::optional<std::size_t>>;
  EXPECT_EQ(FindArguments(dialog, registry).positions, Positions({5, 4})) << "by their order";
  dialog.hasScrollBar = false;
  EXPECT_EQ(FindArguments(dialog, registry).positions, Positions(2)) << "it has six arguments";
  dialog.texts.push_back({XTEXT("Sort_Type"), {10, 22, 90, 38}});
  EXPECT_EQ(FindArguments(dialog, registry).positions, Positions({std::nullopt, 3})) << "a label says it better";
  dialog.texts[1].text = XTEXT("AVLOOKUP2");
  EXPECT_EQ(FindArguments(dialog, registry).function, nullptr);
}

}  // namespace
}  // namespace quillmere
