#include "frame/callbacks/excel_settings.h"

#include <atomic>

#include "frame/callbacks/callbacks.h"

namespace quillmere {
namespace {

constinit std::atomic<XCHAR> decimalSeparatorInUse = XTEXT('.');

// Types of information that xlfGetWorkspace gives.
constexpr int kVersionText = 2;
constexpr int kInternationalSettings = 37;

// Zero-based places in the row of international settings.
constexpr std::int32_t kDecimalSeparatorPlace = 2;
constexpr std::int32_t kRowLetterPlace = 5;
constexpr std::int32_t kColumnLetterPlace = 6;

constexpr int kVersionOfExcel2007 = 12;
constexpr int kHighestVersion = 9'999;

int LeadingNumber(XStringView text) {
  int number = 0;
  for (const XCHAR unit : text) {
    if (unit < XTEXT('0') || unit > XTEXT('9') || number > kHighestVersion / 10) break;
    number = number * 10 + (unit - XTEXT('0'));
  }
  return number;
}

int AskVersion() {
  CXlOper text;
  if (CallExcelForCode(text, int{xlfGetWorkspace} | xlIntl, CXlOper::Number(kVersionText)) != xlretSuccess) return 0;
  CXlOper version;
  if (CallExcelForCode(version, xlCoerce, text, CXlOper::Integer(xltypeInt)) == xlretSuccess && version.IsInteger())
    return version.AsInteger();
  return text.IsText() ? LeadingNumber(text.AsText()) : 0;
}

/// The setting at `place` when it is one character, else `fallback`.
XCHAR SettingAt(const CXlCells& settings, std::int32_t place, XCHAR fallback) {
  if (settings.rows != 1 || place >= settings.columns || !IsTextCell(settings.At(0, place))) return fallback;
  const XStringView text = CellText(settings.At(0, place));
  return text.size() == 1 ? text.front() : fallback;
}

}  // namespace

ExcelSettings& CurrentExcelSettings() noexcept {
  static constinit ExcelSettings settings;
  return settings;
}

XCHAR DecimalSeparator() noexcept { return decimalSeparatorInUse.load(std::memory_order_relaxed); }

void SetDecimalSeparator(XCHAR separator) noexcept {
  decimalSeparatorInUse.store(separator, std::memory_order_relaxed);
}

void DetectExcelVersion() noexcept {
  ExcelSettings& current = CurrentExcelSettings();
  try {
    current.version = AskVersion();
  } catch (const std::exception&) {
    current.version = 0;
  }
  current.excel12OrLater = current.version >= kVersionOfExcel2007;
}

void ReadLocalSettings() noexcept {
  constexpr ExcelSettings kDefaults;
  ExcelSettings& current = CurrentExcelSettings();
  current.rowLetter = kDefaults.rowLetter;
  current.columnLetter = kDefaults.columnLetter;
  SetDecimalSeparator(XTEXT('.'));
  CXlOper answer;
  if (CallExcelForCode(answer, xlfGetWorkspace, CXlOper::Number(kInternationalSettings)) != xlretSuccess ||
      !answer.IsArray())
    return;
  try {
    const CXlCells settings = answer.Cells();
    current.rowLetter = SettingAt(settings, kRowLetterPlace, current.rowLetter);
    current.columnLetter = SettingAt(settings, kColumnLetterPlace, current.columnLetter);
    SetDecimalSeparator(SettingAt(settings, kDecimalSeparatorPlace, XTEXT('.')));
  } catch (const std::exception&) {
    // A malformed cell: the settings read so far stand, the others keep their defaults.
  }
}

}  // namespace quillmere
