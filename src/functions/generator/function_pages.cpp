#include "functions/generator/function_pages.h"

#include <nlohmann/json.hpp>

namespace quillmere::generator {
namespace {

using Json = nlohmann::ordered_json;

Json PageOf(const Argument& argument, bool required) {
  Json page{{"name", argument.name}};
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
  for (const ArgumentGroup& group : function.arguments)
    for (int i = 0; i < group.Count(); ++i, ++at) {
      const bool isAsked = group.IsRun() && i < group.required * static_cast<int>(group.each.size());
      pages.push_back(PageOf(arguments[at], arguments[at].required || isAsked));
    }
  return pages;
}

}  // namespace

GeneratedFile FunctionPages(const std::vector<Family>& families) {
  Json pages = Json::array();
  for (const Family& family : families)
    for (const Function& function : family.functions) {
      Json page{{"name", function.name}, {"family", family.name}, {"page", function.longText}};
      if (!function.exampleFormula.empty()) {
        page["example"] = function.exampleFormula;
        page["result"] = function.exampleResult;
        if (!function.exampleGiven.empty()) page["given"] = function.exampleGiven;
      }
      page["arguments"] = ArgumentsOf(function);
      pages.push_back(std::move(page));
    }
  return {"functions.json", pages.dump(1) + "\n"};
}

}  // namespace quillmere::generator
