#include "frame/registration/descriptor.h"

#include <gtest/gtest.h>

#include <tuple>

namespace quillmere {
namespace {

template <class Function>
auto FieldsOf(const Function& function) {
  return std::tuple(XStringView(function.name), XStringView(function.help), function.category, function.macroType,
                    function.flags, function.interfaces, function.helpId);
}

template <class Argument>
auto ArgumentFieldsOf(const Argument& argument) {
  return std::tuple(XStringView(argument.name), XStringView(argument.help), argument.kind, argument.flags,
                    XStringView(argument.defaultText));
}

TEST(Descriptor, ReadsWhatItWrites) {
  constexpr ArgumentDeclaration kArguments[] = {{.name = XTEXT("Divider"),
                                                 .kind = ArgumentKind::kString,
                                                 .flags = 240,
                                                 .defaultText = XTEXT("\"\""),
                                                 .defaultValue = {.type = xltypeStr},
                                                 .help = XTEXT("{braces}, commas and \"quotes\"")},
                                                {.name = XTEXT("Limit"),
                                                 .kind = ArgumentKind::kDouble,
                                                 .defaultText = XTEXT("-9E+37"),
                                                 .defaultValue = {.type = xltypeNum, .number = -9E+37}}};
  const FunctionDeclaration full{.name = XTEXT("SOME.FUNCTION"),
                                 .macroType = MacroType::kCommand,
                                 .category = 14,
                                 .flags = kThreadSafe | kFrameworkMark32,
                                 .interfaces = 3,
                                 .helpId = 7,
                                 .help = XTEXT("One, two; } and {"),
                                 .arguments = kArguments};
  for (const FunctionDeclaration& function : {full, FunctionDeclaration{}}) {
    const auto parsed = ParseDescriptor(WriteDescriptor(function));
    const auto* const read = std::get_if<DescribedFunction>(&parsed);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->returnLetter, XTEXT("U"));
    EXPECT_EQ(FieldsOf(*read), FieldsOf(function));
    ASSERT_EQ(read->arguments.size(), function.arguments.size());
    for (std::size_t i = 0; i < read->arguments.size(); ++i)
      EXPECT_EQ(ArgumentFieldsOf(read->arguments[i]), ArgumentFieldsOf(kArguments[i]));
  }
}

TEST(Descriptor, SaysWhereATextIsNone) {
  const std::pair<XStringView, std::size_t> cases[] = {
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
      {XTEXT("{F,,,h,9,1,0,U,{{0,{A,Int,0,,,,,}}},{},2,,1,0,,,,0,0}"), 19}};
  for (const auto& [text, position] : cases) {
    const auto parsed = ParseDescriptor(text);
    ASSERT_TRUE(std::holds_alternative<DescriptorFault>(parsed)) << position;
    EXPECT_EQ(std::get<DescriptorFault>(parsed).position, position);
  }
}

}  // namespace
}  // namespace quillmere
