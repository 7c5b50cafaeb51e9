// The texts of xlfRegister that follow from a function's arguments.
#pragma once

#include <string>

#include "frame/registration/function_declaration.h"

namespace quillmere {

/// The type text of the `_12` export: "U", the argument letters, then the marks "!" (volatile), "#" (macro-sheet
/// equivalent) and "$" (thread-safe), in this order.
std::string TypeText12(const FunctionDeclaration& declaration);

/// The same for the `_4` export: "R" and the letters of the 8-bit interface, without "$", which came with the other
/// one.
std::string TypeText4(const FunctionDeclaration& declaration);

/// The argument names, separated by commas.
XString ArgumentText(const FunctionDeclaration& declaration);

}  // namespace quillmere
