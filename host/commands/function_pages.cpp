#include "host/commands/function_pages.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/files/file_text.h"
#include "host/text/letter_case.h"
#include "host/text/path_text.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

using Json = nlohmann::json;

ArgumentPage ReadArgument(const Json& page) {
  ArgumentPage argument;
  argument.defaultText = page.value("default", "");
  argument.isRequired = page.value("required", false);
  argument.isOnlyChoices = page.value("only", false);
  for (const Json& choice : page.value("choices", Json::array()))
    argument.choices.emplace_back(choice.at("code").get<int>(), choice.at("text").get<std::string>());
  return argument;
}

FunctionPage ReadFunction(const Json& page) {
  FunctionPage function;
  function.family = page.at("family");
  for (const Json& argument : page.at("arguments")) function.arguments.push_back(ReadArgument(argument));
  function.text = page.at("page");
  function.example = page.value("example", "");
  function.result = page.value("result", "");
  function.given = page.value("given", "");
  return function;
}

}  // namespace

FunctionPages ReadFunctionPages(const std::filesystem::path& addin) {
  std::filesystem::path path = addin;
  path.replace_filename(addin.stem().u8string() + u8"_functions.json");
  std::error_code unknown;
  if (!std::filesystem::exists(path, unknown)) return {};
  const auto read = ReadFile(path);
  const std::string shown = TextOf(path);
  if (const auto* failure = std::get_if<FileFailure>(&read)) throw std::runtime_error(shown + ": " + failure->reason);
  FunctionPages pages;
  try {
    const Json file = Json::parse(std::get<std::string>(read));
    for (const Json& page : file.at("functions"))
      pages[FoldCase(FromUtf8(page.at("name").get<std::string>()).value_or(XString()))] = ReadFunction(page);
  } catch (const Json::exception& error) {
    throw std::runtime_error(shown + ": it holds no pages of functions: " + error.what());
  }
  return pages;
}

}  // namespace qcalc
