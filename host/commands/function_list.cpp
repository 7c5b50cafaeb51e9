#include "host/commands/function_list.h"

#include <algorithm>
#include <vector>

#include "host/text/utf8.h"

namespace qcalc {
namespace {

std::vector<std::string> ArgumentNames(const RegisteredFunction& function) {
  std::vector<std::string> names;
  const std::string all = ToUtf8(function.argumentNames);
  for (std::size_t start = 0; start < all.size();) {
    const std::size_t end = std::min(all.find(',', start), all.size());
    const std::size_t first = all.find_first_not_of(' ', start);
    names.push_back(first < end ? all.substr(first, end - first) : std::string());
    start = end + 1;
  }
  return names;
}

std::string Marks(const RegisteredFunction& function) {
  std::string marks;
  const auto add = [&](bool isSet, const char* mark) {
    if (isSet) marks += (marks.empty() ? "" : ", ") + std::string(mark);
  };
  add(function.IsCommand(), "command");
  add(function.IsHidden(), "hidden");
  add(function.type.isThreadSafe, "thread-safe");
  add(function.isVolatile, "volatile");
  add(function.type.isMacroEquivalent, "macro-sheet equivalent");
  add(function.type.isClusterSafe, "cluster-safe");
  return marks.empty() ? "none" : marks;
}

}  // namespace

std::string DescribeBriefly(const RegisteredFunction& function) {
  std::string line = ToUtf8(function.name) + "(";
  bool isFirst = true;
  for (const std::string& name : ArgumentNames(function)) {
    line += (isFirst ? "" : ", ") + name;
    isFirst = false;
  }
  return line + ")";
}

std::string DescribeFully(const RegisteredFunction& function) {
  std::string text = DescribeBriefly(function) + "\n";
  const auto add = [&](const char* title, const std::string& content) {
    if (!content.empty()) text += "  " + std::string(title) + content + "\n";
  };
  add("procedure:   ", ToUtf8(function.procedure));
  add("type text:   ", ToUtf8(function.typeText));
  add("marks:       ", Marks(function));
  add("category:    ", ToUtf8(function.category));
  add("help topic:  ", ToUtf8(function.helpTopic));
  add("description: ", ToUtf8(function.help));
  const std::vector<std::string> names = ArgumentNames(function);
  std::size_t widest = 0;
  for (const std::string& name : names) widest = std::max(widest, name.size());
  if (!names.empty()) text += "  arguments:\n";
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string help = i < function.argumentHelp.size() ? ToUtf8(function.argumentHelp[i]) : std::string();
    text += "    " + names[i] + std::string(widest - names[i].size() + 2, ' ') + help + "\n";
  }
  return text;
}

}  // namespace qcalc
