// qcalc run.
#include <algorithm>
#include <iostream>
#include <iterator>

#include "host/commands/commands.h"
#include "host/files/file_text.h"
#include "host/scripts/runner.h"
#include "host/text/path_text.h"
#include "host/text/shown_text.h"

namespace qcalc {
namespace {

/// The script's text; nothing, with the reason told, when it cannot be read.
std::optional<std::string> ReadScript(const std::string& name) {
  if (name == "-") return std::string(std::istreambuf_iterator<char>(std::cin), {});
  auto read = ReadFile(PathOf(name));
  if (const auto* failure = std::get_if<FileFailure>(&read)) {
    std::cerr << name << ": " << failure->reason << std::endl;
    return std::nullopt;
  }
  return std::get<std::string>(std::move(read));
}

ExitStatus RunScript(const std::filesystem::path& addin, const std::string& name, Report& report) {
  const std::optional<std::string> text = ReadScript(name);
  if (!text) return kUnusable;
  const auto commands = ParseScript(*text);
  if (!commands) {
    const SyntaxError& error = commands.Error();
    std::cerr << ShownMessage(name + ":" + std::to_string(error.line) + ":" + std::to_string(error.column) + ": " +
                              error.message)
              << std::endl;
    return kUnusable;
  }
  const std::filesystem::path folder = name == "-" ? std::filesystem::path() : PathOf(name).parent_path();
  try {
    ScriptRunner(name, folder, addin, report).Run(*commands);
  } catch (const ScriptError& error) {
    std::cerr << ShownMessage(error.what()) << std::endl;
    return kUnusable;
  } catch (const AddinFailure& failure) {
    std::cerr << name << ": " << failure.what() << std::endl;
    return kNoAddin;
  }
  return kAllWell;
}

ExitStatus RunScripts(const std::filesystem::path& addin, const std::vector<std::string>& names, std::size_t first) {
  Journal& journal = ProcessJournal();
  Report report(std::cout, journal.tally);
  ExitStatus worst = kAllWell;
  for (std::size_t i = first; i < names.size(); ++i) {
    journal.item = static_cast<std::int32_t>(i);
    journal.line = 0;
    journal.caseName.Set({});
    worst = std::max(worst, RunScript(addin, names[i], report));
  }
  return worst;
}

}  // namespace

Work ScriptWork(const std::filesystem::path& addin, const std::vector<std::string>& names) {
  return {names, [=](std::size_t first) { return RunScripts(addin, names, first); },
          [=](Journal& journal, const std::string& sentence) {
            const std::string& name = names[static_cast<std::size_t>(journal.item)];
            Report(std::cout, journal.tally).Fail({name, journal.line, journal.caseName.Get()}, sentence);
          },
          [](Journal& journal) {
            Report(std::cout, journal.tally).Close();
            return journal.tally.failed > 0 ? kFailed : kAllWell;
          }};
}

}  // namespace qcalc
