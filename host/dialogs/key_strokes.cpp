#include "host/dialogs/key_strokes.h"

#include "host/text/text_cursor.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

struct KeyName {
  std::string_view name;
  std::uint16_t key;
};

constexpr KeyName kKeys[] = {
    {"Tab", 0x09},  {"Enter", 0x0D},  {"Escape", 0x1B},    {"PageUp", 0x21}, {"PageDown", 0x22},
    {"End", 0x23},  {"Home", 0x24},   {"Left", 0x25},      {"Up", 0x26},     {"Right", 0x27},
    {"Down", 0x28}, {"Delete", 0x2E}, {"Backspace", 0x08}, {"F4", 0x73},
};

void ReadText(TextCursor& cursor, std::vector<KeyStroke>& strokes) {
  const std::size_t quote = cursor.Position() - 1;
  std::string bytes;
  while (true) {
    if (cursor.AtEnd()) cursor.FailAt(quote, "expected a text that ends in a quote");
    const char byte = cursor.Peek();
    cursor.Advance();
    if (byte == '"' && !cursor.Accept('"')) break;
    bytes += byte;
  }
  const XString units = *FromUtf8(bytes);
  for (const XCHAR unit : units) strokes.push_back({.unit = unit});
}

KeyStroke ReadKey(TextCursor& cursor) {
  KeyStroke stroke;
  while (true) {
    const std::size_t start = cursor.Position();
    while (IsLetter(cursor.Peek()) || IsDigit(cursor.Peek())) cursor.Advance();
    const std::string_view word = cursor.Slice(start);
    if (cursor.Accept('+')) {
      bool* const held = word == "Alt"       ? &stroke.withAlt
                         : word == "Control" ? &stroke.withControl
                         : word == "Shift"   ? &stroke.withShift
                                             : nullptr;
      if (!held) cursor.FailAt(start, "expected Alt, Control or Shift before '+', found '" + std::string(word) + "'");
      *held = true;
      continue;
    }
    std::string names;
    for (const KeyName& known : kKeys) {
      if (known.name == word) stroke.key = known.key;
      names += std::string(known.name) + ", ";
    }
    if (stroke.key == 0) {
      cursor.MoveTo(start);
      cursor.FailExpecting("a key (" + names + "one with Alt+, Control+ or Shift+) or a text in quotes");
    }
    return stroke;
  }
}

}  // namespace

Parsed<std::vector<KeyStroke>> ParseKeyStrokes(std::string_view text) {
  TextCursor cursor(text);
  std::vector<KeyStroke> strokes;
  try {
    for (cursor.SkipBlanks(); strokes.empty() || !cursor.AtEnd(); cursor.SkipBlanks())
      if (cursor.Accept('"'))
        ReadText(cursor, strokes);
      else
        strokes.push_back(ReadKey(cursor));
  } catch (SyntaxError& error) {
    return std::move(error);
  }
  return strokes;
}

}  // namespace qcalc
