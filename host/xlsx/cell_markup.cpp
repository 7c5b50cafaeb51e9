#include "host/xlsx/cell_markup.h"

#include <charconv>
#include <cmath>

#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

bool IsHexDigit(XCHAR unit) {
  return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'F') || (unit >= 'a' && unit <= 'f');
}

/// Whether `_x0041_` and its like stand there, which would be read as one unit.
bool IsEscape(XStringView text) {
  constexpr std::size_t kLength = 7;
  if (text.size() < kLength || text[0] != '_' || text[1] != 'x' || text[kLength - 1] != '_') return false;
  for (std::size_t i = 2; i < kLength - 1; ++i)
    if (!IsHexDigit(text[i])) return false;
  return true;
}

/// Whether XML has no such character, or would read it as another.
bool IsNoXml(char32_t character) {
  const bool isControl = character < ' ' && character != '\t' && character != '\n';
  return isControl || IsHighSurrogate(character) || IsLowSurrogate(character) || character == 0xFFFE ||
         character == 0xFFFF;
}

void AppendEscape(std::string& out, char32_t unit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += "_x";
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(unit >> shift) & 0xF];
  out += '_';
}

void AppendText(std::string& out, XStringView text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const char32_t character = TakeCharacter(text, at);
    if (IsNoXml(character) || (character == '_' && IsEscape(text.substr(start))))
      AppendEscape(out, character);
    else if (character == '&')
      out += "&amp;";
    else if (character == '<')
      out += "&lt;";
    else if (character == '>')
      out += "&gt;";
    else if (character < 0x80)
      out += static_cast<char>(character);
    else
      out += ToUtf8(text.substr(start, at - start));
  }
}

/// Whether readers may take blanks off the text unless they are told.
bool HasOuterBlanks(XStringView text) {
  const auto isBlank = [](XCHAR unit) { return unit == ' ' || unit == '\t' || unit == '\n'; };
  return !text.empty() && (isBlank(text.front()) || isBlank(text.back()));
}

void AppendNumber(std::string& out, double number) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, number == 0 ? 0.0 : number);
  out.append(digits, end.ptr);
}

void AppendContent(std::string& out, const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kNumber:
      AppendNumber(out, cell.AsNumber());
      break;
    case CellKind::kText:
      AppendText(out, cell.AsText());
      break;
    case CellKind::kBoolean:
      out += cell.AsBoolean() ? '1' : '0';
      break;
    case CellKind::kError:
      out += ErrorName(IsNewerError(cell.AsError()) ? std::int32_t{xlerrValue} : cell.AsError());
      break;
    case CellKind::kEmpty:
      break;
  }
}

CellView Storable(const CellView& cell) {
  return cell.IsNumber() && !std::isfinite(cell.AsNumber()) ? CellView::Error(xlerrNum) : cell;
}

}  // namespace

std::string_view TypeAttribute(const CellView& cell) {
  switch (Storable(cell).Kind()) {
    case CellKind::kText:
      return " t=\"str\"";
    case CellKind::kBoolean:
      return " t=\"b\"";
    case CellKind::kError:
      return " t=\"e\"";
    case CellKind::kEmpty:
    case CellKind::kNumber:
      break;
  }
  return {};
}

void AppendCellValue(std::string& out, std::string_view prefix, const CellView& cell) {
  if (cell.IsEmpty()) return;
  out += '<';
  out += prefix;
  out += cell.IsText() && HasOuterBlanks(cell.AsText()) ? "v xml:space=\"preserve\">" : "v>";
  AppendContent(out, Storable(cell));
  out += "</";
  out += prefix;
  out += "v>";
}

}  // namespace qcalc
