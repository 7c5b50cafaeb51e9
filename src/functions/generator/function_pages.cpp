#include "functions/generator/function_pages.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace quillmere::generator {
namespace {

using Json = nlohmann::ordered_json;

std::string_view WordOf(MacroType type) {
  const auto is = [type](const auto& each) { return each.second == type; };
  return std::find_if(kMacroTypes.begin(), kMacroTypes.end(), is)->first;
}

Json PageOf(const Argument& argument, bool required) {
  Json page{{"name", argument.name}, {"help", argument.help}};
  if (argument.defaultText) page["default"] = *argument.defaultText;
  if (required) page["required"] = true;
  for (const Choice& choice : argument.choices)
    page["choices"].push_back({{"code", choice.code}, {"text", choice.text}});
  if (argument.only) page["only"] = true;
  return page;
}

Json ArgumentsOf(const Function& function) {
  Json pages = Json::array();
  const std::vector<Argument> arguments = function.AllArguments();
  std::size_t at = 0;
  for (const ArgumentGroup& group : function.arguments) {
    const int eachRound = static_cast<int>(group.each.size());
    for (int i = 0; i < group.Count(); ++i, ++at) {
      const bool isAsked = group.IsRun() && i < group.required * eachRound;
      Json page = PageOf(arguments[at], arguments[at].required || isAsked);
      if (group.IsRun()) page["round"] = i / eachRound + 1;
      if (group.IsRun()) page["rounds"] = group.rounds;
      pages.push_back(std::move(page));
    }
  }
  return pages;
}

Json PageOf(const Function& function, const Family& family) {
  Json page{{"name", function.name},
            {"family", family.name},
            {"type", WordOf(function.type)},
            {"helpId", function.helpId},
            {"description", function.description},
            {"page", function.longText}};
  if (!function.exampleFormula.empty()) {
    page["example"] = function.exampleFormula;
    page["result"] = function.exampleResult;
    if (!function.exampleGiven.empty()) page["given"] = function.exampleGiven;
  }
  page["remarks"] = function.remarks;
  page["related"] = function.related;
  page["arguments"] = ArgumentsOf(function);
  return page;
}

}  // namespace

GeneratedFile FunctionPages(const std::string& version, const std::vector<Family>& families) {
  Json all{{"version", version}, {"families", Json::array()}, {"functions", Json::array()}};
  for (const Family& family : families) {
    all["families"].push_back({{"name", family.name}, {"title", family.title}, {"introduction", family.introduction}});
    for (const Function& function : family.functions) all["functions"].push_back(PageOf(function, family));
  }
  return {"functions.json", all.dump(1) + "\n"};
}

}  // namespace quillmere::generator
