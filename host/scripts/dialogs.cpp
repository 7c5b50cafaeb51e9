// Script commands that open Excel's Function Arguments dialog, type and click in it, and look at what came of it.
#include "host/scripts/runner.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr XStringView kTitle = XTEXT("Function Arguments");

void NeedWindows(const ScriptLine& line) {
  if (!CanOpenDialogs()) line.Fail("dialogs are for the Windows build alone");
}

ScriptAction ParseDialog(ScriptLine& line) {
  NeedWindows(line);
  const XString function = *FromUtf8(line.Word("a function"));
  const XString title = line.IsAtEnd() ? XString(kTitle) : *FromUtf8(line.Rest("a title"));
  return [function, title](ScriptRunner& runner) { runner.ItsSession().ShowDialog(function, title, true); };
}

ScriptAction ParseUnnamedDialog(ScriptLine& line) {
  NeedWindows(line);
  const XString function = *FromUtf8(line.Word("a function"));
  return [function](ScriptRunner& runner) { runner.ItsSession().ShowDialog(function, XString(kTitle), false); };
}

ScriptAction ParseCloseDialog(ScriptLine& line) {
  NeedWindows(line);
  return [](ScriptRunner& runner) { runner.ItsSession().CloseDialog(); };
}

ScriptAction ParseKeys(ScriptLine& line) {
  NeedWindows(line);
  const std::string_view part = line.Rest("keys");
  const auto strokes = ParseKeyStrokes(part);
  if (!strokes) line.FailIn(part.substr(static_cast<std::size_t>(strokes.Error().column - 1)), strokes.Error().message);
  return [keys = *strokes](ScriptRunner& runner) { runner.ItsSession().Dialog().Press(keys); };
}

ScriptAction ParseClick(ScriptLine& line) {
  NeedWindows(line);
  const XString windowClass = *FromUtf8(line.Word("a window class"));
  const std::int32_t nth = line.WholeNumber("the number of a window", 1, kMostCount);
  auto spot = WindowSpot::kCenter;
  // The words are in the order of the spots.
  if (!line.IsAtEnd()) spot = static_cast<WindowSpot>(line.Choice({"center", "left", "right", "top", "bottom"}));
  return [windowClass, nth, spot](ScriptRunner& runner) {
    if (!runner.ItsSession().Dialog().Click(windowClass, static_cast<std::size_t>(nth - 1), spot))
      throw std::runtime_error("there is no window " + std::to_string(nth) + " of class " + ToUtf8(windowClass));
  };
}

ScriptAction ParseExpectDialog(ScriptLine& line) {
  NeedWindows(line);
  return [expected = std::string(line.Rest("what the dialog holds"))](ScriptRunner& runner) {
    const std::string got = ToUtf8(runner.ItsSession().Dialog().Outcome());
    runner.ExpectAbout("the dialog", got == expected, expected, got);
  };
}

ScriptAction ParseExpectWindows(ScriptLine& line) {
  NeedWindows(line);
  const std::int32_t count = line.WholeNumber("a number of windows", 0, kMostCount);
  return [count, windowClass = *FromUtf8(line.Rest("a window class"))](ScriptRunner& runner) {
    const std::size_t got = runner.ItsSession().Dialog().CountWindows(windowClass);
    runner.ExpectAbout("windows of class " + ToUtf8(windowClass), got == static_cast<std::size_t>(count),
                       std::to_string(count), std::to_string(got));
  };
}

ScriptAction ParseExpectUntouched(ScriptLine& line) {
  NeedWindows(line);
  return [](ScriptRunner& runner) {
    const std::string change = runner.ItsSession().Dialog().FirstChange();
    runner.ExpectAbout("the dialog", change.empty(), "as it was made", change);
  };
}

constexpr ScriptCommandForm kDialogCommands[] = {
    {"dialog", "dialog FUNCTION [TITLE]", ParseDialog},
    {"unnamed-dialog", "unnamed-dialog FUNCTION", ParseUnnamedDialog},
    {"close-dialog", "close-dialog", ParseCloseDialog},
    {"keys", "keys KEY or \"TEXT\"...", ParseKeys},
    {"click", "click CLASS NTH [center, left, right, top or bottom]", ParseClick},
    {"expect-dialog", "expect-dialog =FORMULA, entered =FORMULA or cancelled", ParseExpectDialog},
    {"expect-windows", "expect-windows N CLASS", ParseExpectWindows},
    {"expect-untouched", "expect-untouched", ParseExpectUntouched},
};

}  // namespace

std::span<const ScriptCommandForm> DialogCommands() { return kDialogCommands; }

}  // namespace qcalc
