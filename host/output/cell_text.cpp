#include "host/output/cell_text.h"

#include <cmath>
#include <string_view>

#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

// Beyond this a double has no digits for the ones.
constexpr double kMostExactWhole = 9007199254740992;

/// Hands on the text character by character, in the bytes that a file may hold.
template <typename Take>
void ForEachCharacter(XStringView text, Take&& take) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const char32_t character = TakeCharacter(text, at);
    if (character < 0x80) {
      const char byte = static_cast<char>(character);
      take(std::string_view(&byte, 1));
    } else if (IsHighSurrogate(character) || IsLowSurrogate(character)) {
      take("\uFFFD");
    } else {
      take(ToUtf8(text.substr(start, at - start)));
    }
  }
}

bool NeedsQuotes(XStringView text) {
  const auto isBlank = [](XCHAR unit) { return unit == ' '; };
  if (text.empty() || isBlank(text.front()) || isBlank(text.back())) return true;
  for (const XCHAR unit : text)
    if (unit == ',' || unit == '"' || unit == '\r' || unit == '\n') return true;
  return false;
}

void AppendEscaped(std::string& out, char byte) {
  constexpr std::string_view kControls = "\b\t\n\f\r", kLetters = "btnfr", kDigits = "0123456789abcdef";
  out += '\\';
  if (byte == '"' || byte == '\\') {
    out += byte;
  } else if (const std::size_t control = kControls.find(byte); control != kControls.npos) {
    out += kLetters[control];
  } else {
    out += "u00";
    out += kDigits[static_cast<std::size_t>(byte) >> 4];
    out += kDigits[static_cast<std::size_t>(byte) & 15];
  }
}

void AppendJsonNumber(std::string& out, double number) {
  if (std::trunc(number) == number && std::fabs(number) < kMostExactWhole)
    out += std::to_string(static_cast<std::int64_t>(number));
  else
    out += PrintNumber(number);
}

}  // namespace

void AppendCsvField(std::string& out, const CellView& cell) {
  if (cell.IsEmpty()) return;
  if (!cell.IsText()) {
    out += PrintLiteral(cell);
    return;
  }
  const bool isQuoted = NeedsQuotes(cell.AsText());
  if (isQuoted) out += '"';
  ForEachCharacter(cell.AsText(), [&out](std::string_view character) {
    if (character == "\"") out += '"';
    out += character;
  });
  if (isQuoted) out += '"';
}

void AppendJsonText(std::string& out, XStringView text) {
  out += '"';
  ForEachCharacter(text, [&out](std::string_view character) {
    const char byte = character[0];
    const bool isControl = byte >= 0 && byte < ' ';
    if (isControl || byte == '"' || byte == '\\')
      AppendEscaped(out, byte);
    else
      out += character;
  });
  out += '"';
}

void AppendJsonCell(std::string& out, const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      out += "null";
      break;
    case CellKind::kNumber:
      AppendJsonNumber(out, cell.AsNumber());
      break;
    case CellKind::kText:
      AppendJsonText(out, cell.AsText());
      break;
    case CellKind::kBoolean:
      out += cell.AsBoolean() ? "true" : "false";
      break;
    case CellKind::kError:
      out += "{\"error\":\"" + ErrorName(cell.AsError()) + "\"}";
      break;
  }
}

}  // namespace qcalc
