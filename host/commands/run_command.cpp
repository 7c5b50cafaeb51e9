// qcalc run.
#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/commands/commands.h"
#include "host/scripts/runner.h"
#include "host/text/path_text.h"

namespace qcalc {
namespace {

std::optional<std::string> ReadScript(const std::string& name) {
  if (name == "-") return std::string(std::istreambuf_iterator<char>(std::cin), {});
  std::ifstream file(PathOf(name), std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (!file.is_open() || file.bad()) return std::nullopt;
  return text;
}

ExitStatus RunScript(const std::filesystem::path& addin, const std::string& name, Report& report) {
  const std::optional<std::string> text = ReadScript(name);
  if (!text) {
    std::cerr << name << ": the file cannot be read" << std::endl;
    return kUnusable;
  }
  const auto commands = ParseScript(*text);
  if (!commands) {
    const SyntaxError& error = commands.Error();
    std::cerr << name << ":" << error.line << ":" << error.column << ": " << error.message << std::endl;
    return kUnusable;
  }
  const std::filesystem::path folder = name == "-" ? std::filesystem::path() : PathOf(name).parent_path();
  try {
    ScriptRunner(name, folder, addin, report).Run(*commands);
  } catch (const ScriptError& error) {
    std::cerr << error.what() << std::endl;
    return kUnusable;
  } catch (const AddinFailure& failure) {
    std::cerr << name << ": " << failure.what() << std::endl;
    return kNoAddin;
  }
  return kAllWell;
}

}  // namespace

ExitStatus RunScripts(const std::filesystem::path& addin, const std::vector<std::string>& names) {
  Report report(std::cout);
  ExitStatus worst = kAllWell;
  for (const std::string& name : names) worst = std::max(worst, RunScript(addin, name, report));
  report.Close();
  return std::max(worst, report.Failed() > 0 ? kFailed : kAllWell);
}

}  // namespace qcalc
