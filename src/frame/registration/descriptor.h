// The function descriptor: one brace-delimited text that carries a function and its arguments to the function wizard.
//
//   {Name,,,Help,Category,MacroType,Flags,U,{{0,{Name,Kind,Flags,Default,Help,,,,}},...},{},Interfaces,,HelpId,0,,,,0,0}
//
// A field that holds a comma, a brace or a double quote stands in double quotes, its own double quotes doubled.
#pragma once

#include <cstddef>
#include <string_view>
#include <variant>
#include <vector>

#include "frame/registration/function_declaration.h"

namespace quillmere {

/// The word by which a descriptor names an argument kind.
XStringView KindName(ArgumentKind kind);

/// The descriptor of a function.
XString WriteDescriptor(const FunctionDeclaration& declaration);

/// One argument read from a descriptor.
struct DescribedArgument {
  XString name;
  ArgumentKind kind = ArgumentKind::kValue;
  int flags = 0;
  XString defaultText;
  XString help;
};

/// A function read from a descriptor.
struct DescribedFunction {
  XString name;
  XString help;
  int category = 0;  ///< 0: none
  MacroType macroType = MacroType::kFunction;
  int flags = 0;
  XString returnLetter;
  std::vector<DescribedArgument> arguments;
  int interfaces = 0;
  int helpId = 0;
};

/// Why a text is no descriptor, and the zero-based unit where that shows.
struct DescriptorFault {
  std::size_t position;
  std::string_view reason;
};

/// Reads a descriptor. Any text may be given; lists nested more than 8 deep are refused. The fields that are always
/// empty or 0 are not looked at.
std::variant<DescribedFunction, DescriptorFault> ParseDescriptor(XStringView text);

}  // namespace quillmere
