#include "host/files/csv_request.h"

#include <optional>

#include "host/formulas/reference_text.h"
#include "host/text/text_cursor.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"

namespace qcalc {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The whole of a text in quotes; nothing when it is none.
std::optional<std::string> Unquoted(std::string_view text) {
  try {
    TextCursor cursor(text);
    const XString content = ReadText(cursor);
    return cursor.AtEnd() ? std::optional(ToUtf8(content)) : std::nullopt;
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
}

std::optional<std::string> SeparatorIn(std::string_view text) {
  if (text == "tab") return "\t";
  const std::string separator = Unquoted(text).value_or(std::string(text));
  const auto units = FromUtf8(separator);
  std::size_t at = 0;
  if (!units || units->empty()) return std::nullopt;
  TakeCharacter(*units, at);
  if (at < units->size() || separator == "\"" || separator == "\n" || separator == "\r") return std::nullopt;
  return separator;
}

std::optional<CsvColumns> ColumnsIn(std::string_view text) {
  CsvColumns columns;
  try {
    TextCursor cursor(text);
    do {
      cursor.SkipBlanks();
      if (cursor.Peek() == '"') {
        columns.labels.push_back(ToUtf8(ReadText(cursor)));
      } else {
        const std::size_t start = cursor.Position();
        while (IsLetter(cursor.Peek()) || cursor.Peek() == ':') cursor.Advance();
        std::string item(cursor.Slice(start));
        if (item.find(':') == std::string::npos) item += ":" + item;
        const auto area = ParseReference(item);
        if (!area) return std::nullopt;
        columns.ranges.emplace_back(area->area.firstColumn, area->area.lastColumn);
      }
      cursor.SkipBlanks();
    } while (cursor.Accept(','));
    return cursor.AtEnd() ? std::optional(columns) : std::nullopt;
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
}

// Takes the last `WORD VALUE` off the text when something stands before it and `read` can read VALUE.
template <typename Read>
auto TakeOption(std::string_view& text, std::string_view word, Read read) -> decltype(read(text)) {
  for (std::size_t at = text.rfind(word); at != std::string_view::npos && at > 0; at = text.rfind(word, at - 1)) {
    const std::string_view before = Trimmed(text.substr(0, at));
    const std::string_view behind = text.substr(at + word.size());
    const bool isWord = kBlanks.find(text[at - 1]) != std::string_view::npos && !behind.empty() &&
                        kBlanks.find(behind.front()) != std::string_view::npos;
    if (!isWord || before.empty()) continue;
    if (auto value = read(Trimmed(behind))) {
      text = before;
      return value;
    }
  }
  return std::nullopt;
}

}  // namespace

Parsed<CsvRequest> ParseCsvRequest(std::string_view text) {
  CsvRequest request;
  std::string_view rest = Trimmed(text);
  bool hasSeparator = false, hasText = false;
  for (std::size_t before = 0; before != rest.size();) {
    before = rest.size();
    if (!hasSeparator)
      if (const auto separator = TakeOption(rest, "separator", SeparatorIn)) {
        request.options.separator = *separator;
        hasSeparator = true;
      }
    if (!hasText)
      if (const auto columns = TakeOption(rest, "text", ColumnsIn)) {
        request.options.textColumns = *columns;
        hasText = true;
      }
  }
  request.path = rest;
  if (!rest.starts_with('"')) return request;
  if (const auto path = Unquoted(rest)) {
    request.path = *path;
    return request;
  }
  TextCursor cursor(rest);
  try {
    ReadText(cursor);
    cursor.SkipBlanks();
    cursor.Fail("expected separator C, text COLUMNS or the end behind the path, found '" + std::string(cursor.Rest()) +
                "'");
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

}  // namespace qcalc
