// What stands beside an add-in about its functions and is not registered: families, defaults, choices, whole pages.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "xlcall/xchar.h"

namespace qcalc {

struct ArgumentPage {
  std::string defaultText;  ///< as a formula writes it; empty for none
  bool isRequired = false;
  std::vector<std::pair<int, std::string>> choices;
  bool isOnlyChoices = false;

  bool operator==(const ArgumentPage&) const = default;
};

struct FunctionPage {
  std::string family;
  std::vector<ArgumentPage> arguments;  ///< in registered order
  std::string text;
  std::string example, result;
  std::string given;  ///< what the example's result rests on; empty for nothing
};

/// Pages by the function's name without case (FoldCase).
using FunctionPages = std::map<XString, FunctionPage>;

/// Reads the file NAME_functions.json beside the add-in NAME.xll. Nothing when there is none; throws
/// std::runtime_error when it is none of this kind.
FunctionPages ReadFunctionPages(const std::filesystem::path& addin);

}  // namespace qcalc
