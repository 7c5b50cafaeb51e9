#include "host/formats/number_format.h"

#include <cmath>
#include <optional>
#include <vector>

#include "host/formats/format_date.h"
#include "host/formats/format_number.h"
#include "host/formats/format_section.h"
#include "host/values/conversion.h"
#include "host/values/number_writing.h"

namespace qcalc {

namespace {

using Sections = std::vector<FormatSection>;
constexpr std::size_t kTextSection = 3;

bool IsForTexts(const Sections& sections, std::size_t index) {
  return index == kTextSection || (index + 1 == sections.size() && sections[index].kind == FormatSection::Kind::kText);
}

// The section that shows a number, and whether that says by itself that the number is negative.
struct Choice {
  const FormatSection* section = nullptr;  // null: none is for it
  bool impliesSign = false;
};

// Sections that name no condition stand for positive numbers and 0, for negative ones, and where there are three for 0.
Choice Choose(const Sections& sections, double number) {
  std::size_t count = sections.size();
  if (IsForTexts(sections, count - 1)) --count;
  if (count == 0) return {};
  const auto& first = sections[0].condition;
  if (count == 1) return !first || first->Takes(number) ? Choice{&sections[0]} : Choice{};
  const auto& second = sections[1].condition;
  const bool hasThird = count > 2;
  const bool isFirst = first ? first->Takes(number) : hasThird || second ? number > 0 : number >= 0;
  if (isFirst) return {&sections[0], first && first->TakesNegativesOnly()};
  using Test = FormatCondition::Test;
  const bool leavesNegatives =
      !first || (first->limit == 0 && (first->test == Test::kGreater || first->test == Test::kGreaterOrEqual));
  if (!hasThird && !second) return {&sections[1], leavesNegatives};
  if (second ? second->Takes(number) : number < 0) return {&sections[1], !second || second->TakesNegativesOnly()};
  return hasThird ? Choice{&sections[2]} : Choice{};
}

XString WithTexts(const FormatSection& section, XStringView text) {
  XString out;
  for (const FormatToken& token : section.tokens) {
    if (token.Is(FormatToken::Kind::kText) || token.Is(FormatToken::Kind::kGeneral)) out += text;
    if (token.Is(FormatToken::Kind::kLiteral)) out += token.text;
  }
  return out;
}

// Nothing where the number cannot be shown.
std::optional<XString> FormatNumber(double number, const Sections& sections, NumberMarks marks) {
  const Choice choice = Choose(sections, number);
  if (!choice.section || choice.section->kind == FormatSection::Kind::kText) return NumberToGeneral(number, marks);
  const FormatSection& section = *choice.section;
  if (section.tokens.empty()) return XString();
  const double magnitude = std::fabs(number);
  const XString sign(number < 0 && !choice.impliesSign ? 1 : 0, XTEXT('-'));
  switch (section.kind) {
    case FormatSection::Kind::kDate: {
      // Days and times before the first are shown with a sign in the 1904 system, and not at all in that of 1900.
      const auto date = FormatDate(marks.uses1904 ? magnitude : number, section, marks);
      return date && marks.uses1904 ? sign + *date : date;
    }
    case FormatSection::Kind::kGeneral:
      return sign + WithTexts(section, NumberToGeneral(magnitude, marks));
    case FormatSection::Kind::kFraction:
      return sign + FormatFraction(magnitude, section, marks);
    default:
      return sign + FormatMagnitude(magnitude, section, marks);
  }
}

XString FormatText(XStringView text, const Sections& sections) {
  const bool hasOwn = IsForTexts(sections, sections.size() - 1);
  return hasOwn ? WithTexts(sections.back(), text) : XString(text);
}

}  // namespace

Value FormatCell(const CellView& cell, XStringView format, NumberMarks marks) {
  if (cell.IsError()) return Value::OfCell(cell);
  if (format.empty()) return Value::Text({});
  const auto sections = ParseFormat(format, marks);
  if (!sections) return Value::Error(xlerrValue);
  const Value number = cell.IsBoolean() ? Value::Error(xlerrValue) : ToNumber(cell, marks);
  const auto text = number.IsNumber() ? FormatNumber(number.AsNumber(), *sections, marks)
                                      : FormatText(ToText(cell, marks).AsText(), *sections);
  if (!text || text->size() > static_cast<std::size_t>(kXlMaxText)) return Value::Error(xlerrValue);
  return Value::Text(*text);
}

}  // namespace qcalc
