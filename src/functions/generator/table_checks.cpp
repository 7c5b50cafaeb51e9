#include "functions/generator/table_checks.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>

#include "functions/generator/text_rules.h"

namespace quillmere::generator {
namespace {

constexpr int kMaxArgumentHelps = 245;  // xlfRegister takes ten other arguments
constexpr int kMaxArguments4 = 30;      // of a function that an 8-bit Excel calls

std::string At(const Place& place) { return place.file + ":" + std::to_string(place.line); }

/// Reports every key that was met before; says whether it is new.
class Distinct {
 public:
  Distinct(std::string what, Diagnostics& diagnostics) : what_(std::move(what)), diagnostics_(&diagnostics) {}

  bool Meet(const std::string& key, const std::string& shown, const Place& place) {
    const auto [first, isNew] = met_.emplace(key, place);
    if (!isNew) diagnostics_->Add(place, what_ + " '" + shown + "' is taken: " + At(first->second));
    return isNew;
  }

 private:
  std::string what_;
  Diagnostics* diagnostics_;
  std::map<std::string, Place> met_;
};

void CheckArguments(const Function& function, Diagnostics& diagnostics) {
  const std::vector<Argument> all = function.AllArguments();
  const int count = static_cast<int>(all.size());
  if (count > kXlMaxArguments) {
    diagnostics.Add(function.place,
                    "'" + function.name + "' has " + std::to_string(count) + " arguments; Excel takes 255");
    return;
  }
  if (function.excel4 && count > kMaxArguments4) {
    diagnostics.Add(function.place, "'" + function.name + "' has " + std::to_string(count) +
                                        " arguments; an 8-bit entry point takes 30");
  }
  const auto lastHelp = std::find_if(all.rbegin(), all.rend(), [](const Argument& each) { return !each.help.empty(); });
  // Registration adds an empty help text, since Excel cuts the last one.
  if (const auto helps = all.rend() - lastHelp + 1; helps > kMaxArgumentHelps) {
    diagnostics.Add(function.place, "'" + function.name + "' has " + std::to_string(helps) +
                                        " argument help texts, the closing empty one included; Excel takes 245");
    return;
  }
  std::set<std::string> names;
  std::size_t joined = 0;
  for (const Argument& argument : all) {
    joined += argument.name.size() + (names.empty() ? 0 : 1);
    if (!names.insert(UpperCase(argument.name)).second) {
      diagnostics.Add(function.place, "'" + function.name + "' has two arguments '" + argument.name + "'");
    }
  }
  if (joined > kXlMaxRegisteredText) {
    diagnostics.Add(function.place, "the argument names of '" + function.name + "' have " + std::to_string(joined) +
                                        " characters with their commas; Excel takes 255");
  }
}

/// The parameters an entry gives its implementation: 0 for an argument, the length for a run.
std::vector<int> Shape(const Function& function) {
  std::vector<int> shape;
  for (const ArgumentGroup& group : function.arguments) shape.push_back(group.IsRun() ? group.Count() : 0);
  return shape;
}

std::string ShapeText(const std::vector<int>& shape) {
  std::string text;
  for (int part : shape) {
    if (!text.empty()) text += ", ";
    text += part == 0 ? "an argument" : "a run of " + std::to_string(part);
  }
  return text.empty() ? "no argument" : text;
}

void CheckImplementations(const Family& family, Diagnostics& diagnostics) {
  Distinct names("the implementation", diagnostics);
  for (const Implementation& implementation : family.implementations) {
    names.Meet(implementation.name, implementation.name, implementation.place);
    const Function* first = nullptr;
    for (const Function& function : family.functions) {
      if (function.implementation != implementation.name) continue;
      if (!first) first = &function;
      if (Shape(function) == Shape(*first)) continue;
      diagnostics.Add(function.place, "'" + implementation.name + "' takes " + ShapeText(Shape(*first)) + " in '" +
                                          first->name + "' (" + At(first->place) + "), but here " +
                                          ShapeText(Shape(function)));
    }
    if (!first)
      diagnostics.Add(implementation.place, "no function uses the implementation '" + implementation.name + "'");
  }
  Distinct settings("the setting", diagnostics);
  for (const Setting& setting : family.settings) {
    settings.Meet(setting.name, setting.name, setting.place);
    const bool used =
        std::any_of(family.implementations.begin(), family.implementations.end(), [&](const Implementation& each) {
          return std::find(each.settings.begin(), each.settings.end(), setting.name) != each.settings.end();
        });
    if (!used) diagnostics.Add(setting.place, "no implementation takes the setting '" + setting.name + "'");
  }
}

void CheckHelpIdBlocks(const std::vector<Family>& families, Diagnostics& diagnostics) {
  for (const Family& family : families) {
    for (const Family& other : families) {
      if (&other == &family) break;
      if (family.firstHelpId > other.lastHelpId || other.firstHelpId > family.lastHelpId) continue;
      diagnostics.Add(family.place, "the help ids meet those of " + other.file);
    }
    for (const Function& function : family.functions) {
      if (function.helpId == 0 || (function.helpId >= family.firstHelpId && function.helpId <= family.lastHelpId))
        continue;
      diagnostics.Add(function.place, "the help id " + std::to_string(function.helpId) + " of '" + function.name +
                                          "' lies outside the family's, " + std::to_string(family.firstHelpId) +
                                          " to " + std::to_string(family.lastHelpId));
    }
  }
}

/// Related functions are shown as links: each is there, is another one, and stands once.
void CheckRelated(const std::vector<Family>& families, Diagnostics& diagnostics) {
  std::set<std::string> pages;
  for (const Family& family : families)
    for (const Function& function : family.functions)
      if (function.type == MacroType::kFunction) pages.insert(function.name);
  for (const Family& family : families)
    for (const Function& function : family.functions) {
      std::set<std::string> met = {function.name};
      for (const std::string& name : function.related) {
        if (!pages.contains(name))
          diagnostics.Add(function.place, "'" + name + "', related to '" + function.name + "', has no page");
        else if (!met.insert(name).second)
          diagnostics.Add(function.place, "'" + name + "' stands twice on the page of '" + function.name + "'");
      }
    }
}

}  // namespace

void CheckTables(const std::vector<Family>& families, Diagnostics& diagnostics) {
  Distinct names("the name", diagnostics);
  Distinct exports("the export name", diagnostics);
  Distinct helpIds("the help id", diagnostics);
  Distinct types("the enumeration", diagnostics);
  for (const Family& family : families) {
    CheckImplementations(family, diagnostics);
    for (const Setting& setting : family.settings) {
      if (!setting.values.empty()) types.Meet(setting.type, setting.type, setting.place);
    }
    for (const Function& function : family.functions) {
      if (names.Meet(UpperCase(function.name), function.name, function.place)) {
        exports.Meet(function.Procedure(), function.Procedure(), function.place);
      }
      if (function.helpId != 0)
        helpIds.Meet(std::to_string(function.helpId), std::to_string(function.helpId), function.place);
      CheckArguments(function, diagnostics);
    }
  }
  CheckHelpIdBlocks(families, diagnostics);
  CheckRelated(families, diagnostics);
}

}  // namespace quillmere::generator
