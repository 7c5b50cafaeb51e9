#include "host/xlsx/cell_formats.h"

#include <unordered_map>

#include "host/formats/format_section.h"
#include "host/text/digits.h"
#include "host/xlsx/stored_book.h"
#include "host/xml/xml_text.h"

namespace qcalc {

namespace {

// Longer ones Excel does not take.
constexpr std::size_t kMostFormatUnits = 255;

bool IsWithin(std::uint32_t number, std::uint32_t first, std::uint32_t last) {
  return number >= first && number <= last;
}

// Formats that a file need not spell out. From 27 on they differ from one East Asian language to another: where some
// show a date and others a time of day, it is a date.
DateKind BuiltInKind(std::uint32_t number) {
  if (number == 22) return DateKind::kDateAndTime;
  if (IsWithin(number, 18, 21) || IsWithin(number, 45, 47) || IsWithin(number, 32, 33)) return DateKind::kTime;
  if (IsWithin(number, 14, 17) || IsWithin(number, 27, 36) || IsWithin(number, 50, 58)) return DateKind::kDate;
  return DateKind::kNone;
}

std::optional<std::uint32_t> NumberOf(const XmlNode& element, std::string_view attribute) {
  return ReadWhole<std::uint32_t>(FindAttribute(element, attribute).value_or(""));
}

}  // namespace

DateKind DateKindOf(XStringView formatCode) {
  if (formatCode.size() > kMostFormatUnits) return DateKind::kNone;
  const auto sections = ParseFormat(formatCode, NumberMarks{});
  if (!sections || sections->front().kind != FormatSection::Kind::kDate) return DateKind::kNone;
  unsigned kind = 0;
  for (const FormatToken& token : sections->front().tokens) {
    if (!token.IsDatePart()) continue;
    const bool isDay =
        token.Is(FormatToken::Kind::kYear) || token.Is(FormatToken::Kind::kMonth) || token.Is(FormatToken::Kind::kDay);
    kind |= static_cast<unsigned>(isDay ? DateKind::kDate : DateKind::kTime);
  }
  return static_cast<DateKind>(kind);
}

std::vector<DateKind> ReadCellFormats(const Package& package, const std::string& part) {
  std::vector<DateKind> kinds;
  package.ReadTree(part, "the styles", [&](const XmlNode& root) {
    std::unordered_map<std::uint32_t, DateKind> own;
    if (const XmlNode* formats = FindChild(root, "numFmts"))
      ForEachChild(*formats, "numFmt", [&own](const XmlNode& format) {
        if (const auto number = NumberOf(format, "numFmtId"))
          own[*number] = DateKindOf(DecodeXml(FindAttribute(format, "formatCode").value_or("")));
      });
    if (const XmlNode* formats = FindChild(root, "cellXfs"))
      ForEachChild(*formats, "xf", [&](const XmlNode& format) {
        const std::uint32_t number = NumberOf(format, "numFmtId").value_or(0);
        const auto found = own.find(number);
        kinds.push_back(found == own.end() ? BuiltInKind(number) : found->second);
      });
  });
  return kinds;
}

}  // namespace qcalc
