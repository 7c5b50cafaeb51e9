#include "host/commands/function_list.h"

#include <algorithm>
#include <array>
#include <compare>
#include <utility>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
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

/// What the argument's letter has it passed on as.
std::string PassingKind(const TypeLetter& letter) {
  if (letter.MayBeReference()) return "cells or value";
  switch (PassingOf(letter)) {
    case Passing::kText:
      return "text";
    case Passing::kMatrix:
      return "numbers";
    case Passing::kInteger:
      return letter.letter == 'A' ? "boolean" : "whole number";
    case Passing::kOper12:
    case Passing::kOper:
      break;
  }
  return "value";
}

/// The same, with what Excel makes of an argument that is left out and passed by value.
std::string PassingInWords(const TypeLetter& letter) {
  if (letter.MayBeReference() || PassingOf(letter) != Passing::kInteger) return PassingKind(letter);
  return PassingKind(letter) + (letter.letter == 'A' ? ", FALSE when left out" : ", 0 when left out");
}

/// How the argument is passed on, and what stands for it when it is left out.
std::string PassingAndDefault(const TypeLetter& letter, const ArgumentPage& page) {
  if (!page.defaultText.empty()) return PassingKind(letter) + ", " + page.defaultText + " when left out";
  return PassingInWords(letter) + (page.isRequired ? ", required" : "");
}

/// In brackets behind the help text.
std::string DescribeChoices(const ArgumentPage& page) {
  std::string text;
  for (const auto& [code, meaning] : page.choices)
    text += (text.empty() ? "" : ", ") + std::to_string(code) + " " + meaning;
  if (text.empty()) return text;
  return (page.isOnlyChoices ? " [one of " : " [") + text + "]";
}

/// A line for each argument, one for those of a run that are the same.
std::string DescribeArguments(const RegisteredFunction& function, const FunctionPage* page) {
  const std::vector<std::string> names = ArgumentNames(function);
  const auto& letters = function.type.arguments;
  const auto helpOf = [&](std::size_t i) {
    return i < function.argumentHelp.size() ? ToUtf8(function.argumentHelp[i]) : std::string();
  };
  const auto pageOf = [&](std::size_t i) {
    return page && i < page->arguments.size() ? page->arguments[i] : ArgumentPage();
  };
  std::vector<std::array<std::string, 3>> lines;
  for (std::size_t i = 0; i < letters.size();) {
    std::size_t end = i + 1;
    while (end < names.size() && end < letters.size() && IsNextOf(names[end - 1], names[end]) &&
           letters[end] == letters[i] && helpOf(end) == helpOf(i) && pageOf(end) == pageOf(i))
      ++end;
    const std::string name = i < names.size() ? names[i] : "(no name)";
    lines.push_back({end - i > 1 ? name + " to " + names[end - 1] : name, PassingAndDefault(letters[i], pageOf(i)),
                     helpOf(i) + DescribeChoices(pageOf(i))});
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

/// Where the function stands in the list.
struct FamilyPlace {
  enum Group { kFunctions, kHidden, kCommands } group;
  int topic;  ///< the number of the help topic; -1 for none

  auto operator<=>(const FamilyPlace&) const = default;
};

FamilyPlace PlaceOf(const RegisteredFunction& function) {
  const std::string topic = ToUtf8(function.helpTopic);
  const int number = ReadWhole<int>(std::string_view(topic).substr(topic.rfind('!') + 1)).value_or(-1);
  if (function.IsCommand()) return {FamilyPlace::kCommands, number};
  return {function.IsHidden() ? FamilyPlace::kHidden : FamilyPlace::kFunctions, number};
}

std::string TitleOf(const RegisteredFunction& function, const FunctionPage* page) {
  if (function.IsCommand()) return "Commands";
  if (function.IsHidden()) return "Hidden functions";
  if (page) return "Family " + page->family;
  return function.category.empty() ? "Functions" : ToUtf8(function.category);
}

const FunctionPage* PageOf(const RegisteredFunction& function, const FunctionPages& pages) {
  const auto found = pages.find(FoldCase(function.name));
  return found == pages.end() ? nullptr : &found->second;
}

/// The lines of a text, each behind as many blanks.
std::string Indented(const std::string& text, std::size_t blanks) {
  std::string indented;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    if (end > start) indented += std::string(blanks, ' ') + text.substr(start, end - start);
    indented += "\n";
    start = end + 1;
  }
  return indented;
}

}  // namespace

std::string ListByFamily(const std::vector<const RegisteredFunction*>& functions, const FunctionPages& pages) {
  std::vector<const RegisteredFunction*> all = functions;
  std::stable_sort(all.begin(), all.end(),
                   [](const auto* left, const auto* right) { return PlaceOf(*left) < PlaceOf(*right); });
  std::string text, title;
  for (const RegisteredFunction* function : all) {
    const std::string own = TitleOf(*function, PageOf(*function, pages));
    if (own != title) text += (text.empty() ? "" : "\n") + own + ":\n";
    title = own;
    text += Heading(*function, false) + "\n";
  }
  return text;
}

std::string DescribeFully(const RegisteredFunction& function, const FunctionPages& pages) {
  std::string text = Heading(function, true) + "\n";
  const auto add = [&](const char* title, const std::string& content) {
    if (!content.empty()) text += "  " + std::string(title) + content + "\n";
  };
  const FunctionPage* page = PageOf(function, pages);
  add("procedure:   ", ToUtf8(function.procedure));
  add("type text:   ", ToUtf8(function.typeText));
  add("marks:       ", Marks(function));
  add("category:    ", ToUtf8(function.category));
  add("family:      ", page ? page->family : "");
  add("help topic:  ", ToUtf8(function.helpTopic));
  add("description: ", ToUtf8(function.help));
  if (!function.type.arguments.empty()) text += "  arguments:\n" + DescribeArguments(function, page);
  if (!page) return text;
  if (!page->text.empty()) text += "\n" + Indented(page->text, 2);
  if (!page->example.empty()) {
    text += "\n  " + (page->given.empty() ? "" : "Where " + page->given + ": ") + page->example + " gives " +
            page->result + "\n";
  }
  return text;
}

}  // namespace qcalc
