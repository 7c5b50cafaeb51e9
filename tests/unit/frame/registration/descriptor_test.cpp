#include "frame/registration/descriptor.h"

#include <gtest/gtest.h>

#include <random>

namespace quillmere {
namespace {

constexpr XStringView kExample = XTEXT(
    "{HASFORMULA2,,,Returns True if any cell in TheRange contains a formula.,9,1,0,U,"
    "{{0,{TheRange,Reference,0,,A valid Range Reference,,,,}}},{},2,,1102,0,,,,0,0}");

TEST(Descriptor, ReadsWhatItWrites) {
  constexpr ArgumentDeclaration kArguments[] = {
      {.name = XTEXT("Divider"),
       .kind = ArgumentKind::kString,
       .flags = 240,
       .defaultText = XTEXT("\"\""),
       .defaultValue = {.type = xltypeStr},
       .help = XTEXT("{braces}, commas and \"quotes\"")},
      {.name = XTEXT("Limit"),
       .kind = ArgumentKind::kDouble,
       .defaultText = XTEXT("-9E+37"),
       .defaultValue = {.type = xltypeNum, .number = -9E+37}},
      {.name = XTEXT("Empty"), .kind = ArgumentKind::kBoolean},
  };
  const FunctionDeclaration function{.name = XTEXT("SOME.FUNCTION"),
                                     .macroType = MacroType::kCommand,
                                     .category = 14,
                                     .flags = kThreadSafe | kFrameworkMark32,
                                     .interfaces = 3,
                                     .helpId = 7,
                                     .help = XTEXT("One, two; } and {"),
                                     .arguments = kArguments};
  const auto parsed = ParseDescriptor(WriteDescriptor(function));
  const auto* const described = std::get_if<DescribedFunction>(&parsed);
  ASSERT_NE(described, nullptr);
  EXPECT_EQ(described->name, function.name);
  EXPECT_EQ(described->help, function.help);
  EXPECT_EQ(described->category, 14);
  EXPECT_EQ(described->macroType, MacroType::kCommand);
  EXPECT_EQ(described->flags, 33);
  EXPECT_EQ(described->returnLetter, XTEXT("U"));
  EXPECT_EQ(described->interfaces, 3);
  EXPECT_EQ(described->helpId, 7);
  ASSERT_EQ(described->arguments.size(), std::size(kArguments));
  for (std::size_t i = 0; i < std::size(kArguments); ++i) {
    EXPECT_EQ(described->arguments[i].name, kArguments[i].name);
    EXPECT_EQ(described->arguments[i].kind, kArguments[i].kind);
    EXPECT_EQ(described->arguments[i].flags, kArguments[i].flags);
    EXPECT_EQ(described->arguments[i].defaultText, kArguments[i].defaultText);
    EXPECT_EQ(described->arguments[i].help, kArguments[i].help);
  }

  const auto withoutArguments = ParseDescriptor(WriteDescriptor(FunctionDeclaration{}));
  ASSERT_TRUE(std::holds_alternative<DescribedFunction>(withoutArguments));
  EXPECT_TRUE(std::get<DescribedFunction>(withoutArguments).arguments.empty());
  EXPECT_EQ(std::get<DescribedFunction>(withoutArguments).category, 0) << "none is an empty field";
}

TEST(Descriptor, SaysWhereATextIsNone) {
  struct Case {
    XStringView text;
    std::size_t position;
  };
  const Case cases[] = {
      {XTEXT(""), 0},
      {XTEXT("text"), 0},
      {XTEXT("{a,b"), 4},
      {XTEXT("{a,\"b}"), 3},
      {XTEXT("{a,\"b\"c}"), 6},
      {XTEXT("{a{b}}"), 2},
      {XTEXT("{a}}"), 3},
      {XTEXT("{a,b}"), 0},
      {XTEXT("{{{{{{{{{{{{"), 8},
      {XTEXT("{F,,,h,nine,1,0,U,{},{},2,,1,0,,,,0,0}"), 7},
      {XTEXT("{F,,,h,9,3,0,U,{},{},2,,1,0,,,,0,0}"), 9},
      {XTEXT("{F,,,h,9,1,0,U,,{},2,,1,0,,,,0,0}"), 15},
      {XTEXT("{F,,,h,9,1,99999999999,U,{},{},2,,1,0,,,,0,0}"), 11},
      {XTEXT("{F,,,h,9,1,0,U,{{0,{A,Thing,0,,,,,,}}},{},2,,1,0,,,,0,0}"), 22},
      {XTEXT("{F,,,h,9,1,0,U,{{0,{A,Int,0,,,,,}}},{},2,,1,0,,,,0,0}"), 19},
  };
  for (const Case& example : cases) {
    const auto parsed = ParseDescriptor(example.text);
    ASSERT_TRUE(std::holds_alternative<DescriptorFault>(parsed)) << example.position;
    EXPECT_EQ(std::get<DescriptorFault>(parsed).position, example.position) << example.position;
  }
}

TEST(Descriptor, AnyTextMayBeGiven) {
  std::mt19937 random(20);
  constexpr XStringView kMarks = XTEXT("{},\"09aU\xFFFF");
  for (int round = 0; round < 20'000; ++round) {
    XString text(kExample.substr(0, random() % (kExample.size() + 1)));
    for (unsigned change = random() % 4; change > 0 && !text.empty(); --change)
      text[random() % text.size()] = kMarks[random() % kMarks.size()];
    const auto parsed = ParseDescriptor(text);
    if (const auto* const fault = std::get_if<DescriptorFault>(&parsed)) {
      ASSERT_LE(fault->position, text.size());
    }
  }
}

}  // namespace
}  // namespace quillmere
