#include "host/commands/function_list.h"

#include <algorithm>
#include <array>
#include <compare>
#include <utility>

#include "host/text/digits.h"
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

/// The name's digits at its end, as in "Arg12"; empty when there are none.
std::string_view NumberOf(std::string_view name) { return name.substr(name.find_last_not_of("0123456789") + 1); }

/// Whether the second name is the first with the next number: Arg1, Arg2.
bool IsNextOf(std::string_view first, std::string_view second) {
  const auto number = ReadWhole<int>(NumberOf(first)), next = ReadWhole<int>(NumberOf(second));
  return number && next && *next == *number + 1 &&
         first.substr(0, first.size() - NumberOf(first).size()) ==
             second.substr(0, second.size() - NumberOf(second).size());
}

/// Names that go on by number from `first`: one behind the last.
std::size_t EndOfRun(const std::vector<std::string>& names, std::size_t first) {
  std::size_t end = first + 1;
  while (end < names.size() && IsNextOf(names[end - 1], names[end])) ++end;
  return end;
}

std::string Heading(const RegisteredFunction& function, bool isWhole) {
  constexpr std::size_t kShortest = 4;  // of the runs that are cut
  const std::vector<std::string> names = ArgumentNames(function);
  std::string line = ToUtf8(function.name) + "(";
  const auto add = [&line](const std::string& name) { line += (line.back() == '(' ? "" : ", ") + name; };
  for (std::size_t i = 0; i < names.size();) {
    const std::size_t end = isWhole ? i + 1 : EndOfRun(names, i);
    add(names[i]);
    if (end - i >= kShortest)
      add("..., " + names[end - 1]);
    else
      for (std::size_t k = i + 1; k < end; ++k) add(names[k]);
    i = end;
  }
  return line + ")";
}

/// How the argument's letter has it passed on.
std::string PassingInWords(const TypeLetter& letter) {
  if (letter.MayBeReference()) return "cells or value";
  switch (PassingOf(letter)) {
    case Passing::kText:
      return "text";
    case Passing::kMatrix:
      return "numbers";
    case Passing::kInteger:
      return letter.letter == 'A' ? "boolean, FALSE when left out" : "whole number, 0 when left out";
    case Passing::kOper12:
    case Passing::kOper:
      break;
  }
  return "value";
}

/// A line for each argument, one for those of a run that are the same.
std::string DescribeArguments(const RegisteredFunction& function) {
  const std::vector<std::string> names = ArgumentNames(function);
  const auto& letters = function.type.arguments;
  const auto helpOf = [&](std::size_t i) {
    return i < function.argumentHelp.size() ? ToUtf8(function.argumentHelp[i]) : std::string();
  };
  std::vector<std::array<std::string, 3>> lines;
  for (std::size_t i = 0; i < letters.size();) {
    std::size_t end = i + 1;
    while (end < names.size() && end < letters.size() && IsNextOf(names[end - 1], names[end]) &&
           letters[end] == letters[i] && helpOf(end) == helpOf(i))
      ++end;
    const std::string name = i < names.size() ? names[i] : "(no name)";
    lines.push_back({end - i > 1 ? name + " to " + names[end - 1] : name, PassingInWords(letters[i]), helpOf(i)});
    i = end;
  }
  std::size_t widths[2] = {};
  for (const auto& line : lines)
    for (std::size_t i = 0; i < 2; ++i) widths[i] = std::max(widths[i], line[i].size());
  std::string text;
  for (const auto& line : lines) {
    text += "    ";
    for (std::size_t i = 0; i < 2; ++i) text += line[i] + std::string(widths[i] - line[i].size() + 2, ' ');
    text += line[2];
    text.erase(text.find_last_not_of(' ') + 1);
    text += "\n";
  }
  return text;
}

/// Where the function stands in the list, and what its family is called.
struct FamilyPlace {
  int group;  ///< functions, hidden functions, commands
  std::string category;
  int hundred;
  int topic;

  auto operator<=>(const FamilyPlace&) const = default;

  bool IsSameFamily(const FamilyPlace& other) const {
    return group == other.group && category == other.category && hundred == other.hundred;
  }
  std::string Title() const {
    if (group == kCommands) return "Commands";
    const std::string title = group == kHidden ? "Hidden functions" : category.empty() ? "Functions" : category;
    return hundred < 0 ? title : title + ", help topics from " + std::to_string(hundred * kTopicsOfFamily);
  }

  static constexpr int kHidden = 1, kCommands = 2, kTopicsOfFamily = 100;
};

FamilyPlace PlaceOf(const RegisteredFunction& function) {
  const std::string topic = ToUtf8(function.helpTopic);
  const int number = ReadWhole<int>(std::string_view(topic).substr(topic.rfind('!') + 1)).value_or(-1);
  const int group = function.IsCommand() ? FamilyPlace::kCommands : function.IsHidden() ? FamilyPlace::kHidden : 0;
  return {group, ToUtf8(function.category), number < 0 ? -1 : number / FamilyPlace::kTopicsOfFamily, number};
}

}  // namespace

std::string ListByFamily(const std::vector<const RegisteredFunction*>& functions) {
  std::vector<std::pair<FamilyPlace, const RegisteredFunction*>> all;
  for (const RegisteredFunction* function : functions) all.emplace_back(PlaceOf(*function), function);
  std::stable_sort(all.begin(), all.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  std::string text;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i == 0 || !all[i].first.IsSameFamily(all[i - 1].first))
      text += (i == 0 ? "" : "\n") + all[i].first.Title() + ":\n";
    text += Heading(*all[i].second, false) + "\n";
  }
  return text;
}

std::string DescribeFully(const RegisteredFunction& function) {
  std::string text = Heading(function, true) + "\n";
  const auto add = [&](const char* title, const std::string& content) {
    if (!content.empty()) text += "  " + std::string(title) + content + "\n";
  };
  add("procedure:   ", ToUtf8(function.procedure));
  add("type text:   ", ToUtf8(function.typeText));
  add("marks:       ", Marks(function));
  add("category:    ", ToUtf8(function.category));
  add("help topic:  ", ToUtf8(function.helpTopic));
  add("description: ", ToUtf8(function.help));
  if (!function.type.arguments.empty()) text += "  arguments:\n" + DescribeArguments(function);
  return text;
}

}  // namespace qcalc
