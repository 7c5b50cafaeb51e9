#include "host/callbacks/registered_texts.h"

#include <algorithm>

#include "host/calculation/excel_functions.h"
#include "host/formulas/reference_text.h"
#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr XCHAR kFirstBeyondAscii = 0x80;

/// Letters of other alphabets count as such, all that is not ASCII among them but blanks.
bool IsNameLetter(XCHAR unit) {
  constexpr XStringView kBlanks = XTEXT("\u00A0\u2007\u202F\u3000");
  if (unit >= kFirstBeyondAscii) return kBlanks.find(unit) == kBlanks.npos;
  return IsLetter(static_cast<char>(unit)) || unit == '_' || unit == '\\';
}

bool IsNameUnit(XCHAR unit) { return IsNameLetter(unit) || IsDigit(unit) || unit == '.' || unit == '?'; }

/// `R`, `C`, `R1`, `C1`, `R1C1` and what lies between, in either case.
bool IsCellInR1C1(XStringView name) {
  const auto take = [&name](char letter) {
    if (name.empty() || SmallLetter(name[0]) != letter) return false;
    do name.remove_prefix(1);
    while (!name.empty() && IsDigit(name[0]));
    return true;
  };
  const bool hasRow = take('r');
  return (take('c') || hasRow) && name.empty();
}

}  // namespace

std::string DefectOfName(XStringView name) {
  const std::string shown = "the name '" + ToUtf8(name) + "', ";
  if (name.empty()) return "an empty name";
  if (!IsNameLetter(name[0])) return shown + "which does not begin with a letter";
  if (!std::all_of(name.begin(), name.end(), IsNameUnit)) return shown + "with a character that no name holds";
  if (ParseReference(ToUtf8(name)) || IsCellInR1C1(name)) return shown + "which is a cell";
  if (const ExcelFunction* function = FindExcelFunction(name); function && function->isBefore2007)
    return shown + "which is Excel's own";
  return {};
}

std::string DefectOfHelpTopic(XStringView topic) {
  if (topic.empty()) return {};
  const std::string text = ToUtf8(topic);
  const std::size_t mark = text.rfind('!');
  const bool hasParts = mark != text.npos && mark > 0 && text.find_first_of("\"'") == text.npos;
  const bool isAddress = text.starts_with("http://") || text.starts_with("https://");
  const auto id = hasParts ? ReadWhole<std::uint32_t>(std::string_view(text).substr(mark + 1)) : std::nullopt;
  if (id && (!isAddress || *id == 0)) return {};
  return "the help topic '" + text + "', which is neither file!number nor an address with !0";
}

}  // namespace qcalc
