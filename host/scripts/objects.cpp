// Script commands about what the add-in finds in Excel beside the C API: windows, objects, macros in properties, open
// books, servers of data.
#include "host/faults/object_refusals.h"
#include "host/scripts/runner.h"
#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"
#include "host/values/value_order.h"

namespace qcalc {
namespace {

struct ResultName {
  std::string_view name;
  std::uint32_t code;
};

constexpr ResultName kResults[] = {
    {"RPC_E_CALL_REJECTED", 0x8001'0001},
    {"RPC_E_DISCONNECTED", 0x8001'0108},
    {"RPC_E_SERVERCALL_RETRYLATER", 0x8001'010A},
    {"VBA_E_IGNORE", 0x800A'C472},
};

void NeedsObjects(const ScriptLine& line) {
  if (const std::string reason = ObjectModel::WhyNotOffered(); !reason.empty()) line.Fail(reason);
}

/// An HRESULT by its name or in hexadecimal behind "0x".
std::int32_t ResultAt(ScriptLine& line) {
  const std::string_view word = line.Word("an HRESULT");
  std::string names;
  for (const ResultName& result : kResults) {
    if (result.name == word) return static_cast<std::int32_t>(result.code);
    names += std::string(result.name) + ", ";
  }
  const auto number = word.starts_with("0x") ? ReadWhole<std::int64_t>(word.substr(2), 16) : std::nullopt;
  constexpr std::int64_t kFailure = 0x8000'0000, kMost = 0xFFFF'FFFF;
  if (!number || *number < kFailure || *number > kMost)
    line.FailIn(word, "expected the HRESULT of a failure (" + names + "0x80010001), found '" + std::string(word) + "'");
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(*number));
}

ScriptAction ParseRefuse(ScriptLine& line) {
  NeedsObjects(line);
  const std::string name(line.Word("a member or a step"));
  const std::int32_t code = ResultAt(line);
  const std::int32_t nth = line.IsAtEnd() ? 0 : line.WholeNumber("the number of the call", 1, kMostCount);
  return [name, code, nth](ScriptRunner& runner) {
    runner.ItsSession().Host().refusals.Refuse(name, code, nth);
    runner.ItsSession().Objects().ShowBooks();
  };
}

ObjectSettings& SettingsBeforeLoading(ScriptRunner& runner, const char* command) {
  if (runner.ItsSession().Host().library)
    throw ScriptError(std::string(command) + " must come before the add-in is loaded");
  return runner.ItsSession().Objects().Settings();
}

ScriptAction ParseCom(ScriptLine& line) {
  NeedsObjects(line);
  constexpr ComMode kModes[] = {ComMode::kSingleThreaded, ComMode::kMultiThreaded, ComMode::kNone};
  return [mode = kModes[line.Choice({"single", "multi", "none"})]](ScriptRunner& runner) {
    SettingsBeforeLoading(runner, "com").mode = mode;
  };
}

ScriptAction ParseBookWindows(ScriptLine& line) {
  NeedsObjects(line);
  return [isOn = line.Choice({"on", "off"}) == 0](ScriptRunner& runner) {
    SettingsBeforeLoading(runner, "book-windows").hasBookWindows = isOn;
  };
}

ScriptAction ParseRunningObject(ScriptLine& line) {
  NeedsObjects(line);
  const XString id = *FromUtf8(line.Word("a program id"));
  return [id](ScriptRunner& runner) { SettingsBeforeLoading(runner, "running-object").runningAs = id; };
}

/// A property of Application's, by its name.
XString PropertyIn(const ScriptLine& line, std::string_view part) {
  NeedsObjects(line);
  const XString name = FromUtf8(part).value_or(XString());
  if (!ApplicationState().Property(name))
    line.FailIn(part, "expected DisplayAlerts, OnSheetActivate, OnSheetDeactivate or OnCalculate, found '" +
                          std::string(part) + "'");
  return name;
}

ScriptAction ParseProperty(ScriptLine& line) {
  const XString name = PropertyIn(line, line.BeforeEquals("a property's name"));
  return [name, value = line.Literal()](ScriptRunner& runner) {
    runner.ItsSession().Host().application.PutForeignProperty(name, value);
  };
}

ScriptAction ParseExpectProperty(ScriptLine& line) {
  const std::string_view part = line.Word("a property's name");
  return [written = std::string(part), name = PropertyIn(line, part), expected = line.Literal()](ScriptRunner& runner) {
    const Value got = *runner.ItsSession().Host().application.Property(name);
    runner.ExpectAbout(written, SameValue(expected, got), PrintLiteral(expected), PrintLiteral(got));
  };
}

ScriptAction ParseExpectObjects(ScriptLine& line) {
  NeedsObjects(line);
  const std::int32_t count = line.WholeNumber("a number of references", 0, kMostCount);
  return [count](ScriptRunner& runner) {
    const ObjectModel& objects = runner.ItsSession().Objects();
    const int held = objects.CountReferences();
    runner.ExpectAbout("references to objects", held == count, std::to_string(count),
                       std::to_string(held) + (held == 0 ? "" : ": " + objects.DescribeReferences()));
  };
}

ScriptAction ParseExpectBooks(ScriptLine& line) {
  const std::int32_t count = line.WholeNumber("a number of books", 0, kMostCount);
  return [count](ScriptRunner& runner) {
    std::string names;
    const auto& books = runner.ItsSession().ItsWorkbooks().Books();
    for (const auto& book : books) names += (names.empty() ? ": " : ", ") + ToUtf8(book->Name());
    runner.ExpectAbout("open books", std::ssize(books) == count, std::to_string(count),
                       std::to_string(books.size()) + names);
  };
}

ScriptAction ParseRtd(ScriptLine& line) {
  const XString id = FoldCase(*FromUtf8(line.Word("a program id")));
  return [id, value = line.Literal()](ScriptRunner& runner) {
    runner.ItsSession().Host().dataServers.answers[id] = value;
  };
}

/// One row for each call, as wide as the longest; nothing for no calls.
std::optional<Value> TakeTopics(DataServers& servers) {
  const std::vector<std::vector<Value>> calls = std::exchange(servers.topics, {});
  if (calls.empty()) return std::nullopt;
  std::size_t width = 0;
  for (const auto& topics : calls) width = std::max(width, topics.size());
  ArrayBuilder builder(static_cast<std::int32_t>(calls.size()), static_cast<std::int32_t>(width));
  for (std::size_t row = 0; row < calls.size(); ++row)
    for (std::size_t column = 0; column < calls[row].size(); ++column)
      builder.Set(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column), calls[row][column].AsCell());
  return Value::OfArray(builder.Finish());
}

ScriptAction ParseExpectRtd(ScriptLine& line) {
  std::optional<Value> expected;
  std::string printed = "none";
  ScriptLine none = line;
  if (none.Word("topics or none") == printed) {
    line = none;
  } else {
    expected = line.Literal();
    printed = PrintLiteral(*expected);
  }
  return [expected, printed](ScriptRunner& runner) {
    const std::optional<Value> got = TakeTopics(runner.ItsSession().Host().dataServers);
    const bool isMet = expected && got ? SameValue(*expected, *got) : !expected && !got;
    runner.ExpectAbout("topics of xlfRtd", isMet, printed, got ? PrintLiteral(*got) : "none");
  };
}

constexpr ScriptCommandForm kObjectCommands[] = {
    {"refuse", "refuse NAME HRESULT [NTH]", ParseRefuse},
    {"com", "com single, com multi or com none", ParseCom},
    {"book-windows", "book-windows on or book-windows off", ParseBookWindows},
    {"running-object", "running-object PROGID", ParseRunningObject},
    {"property", "property NAME = LITERAL", ParseProperty},
    {"expect-property", "expect-property NAME LITERAL", ParseExpectProperty},
    {"expect-objects", "expect-objects N", ParseExpectObjects},
    {"expect-books", "expect-books N", ParseExpectBooks},
    {"rtd", "rtd PROGID LITERAL", ParseRtd},
    {"expect-rtd", "expect-rtd LITERAL or expect-rtd none", ParseExpectRtd},
};

}  // namespace

std::span<const ScriptCommandForm> ObjectCommands() { return kObjectCommands; }

}  // namespace qcalc
