#include "excel/wizard/formula_wizard_detector.h"

#include <algorithm>

namespace quillmere {
namespace {

/// From here on every workbook has a main window of its own, and any of them may own the dialog.
constexpr int kExcelOfManyMainWindows = 15;
constexpr XStringView kClassPrefix = XTEXT("bosa_sdm_XL");
constexpr XStringView kIdentifyingTitles[] = {XTEXT("Function Arguments")};
constexpr XStringView kExcludingTitles[] = {
    XTEXT("Find"),   XTEXT("Replace"),  XTEXT("Go To"),     XTEXT("Insert Function"),
    XTEXT("Format"), XTEXT("Options"),  XTEXT("Sort"),      XTEXT("Data Validation"),
    XTEXT("Name"),   XTEXT("New Name"), XTEXT("Edit Name"), XTEXT("Macro"),
};

template <std::size_t kCount>
bool BeginsWithOne(XStringView text, const XStringView (&prefixes)[kCount]) {
  return std::ranges::any_of(prefixes, [text](XStringView prefix) { return text.starts_with(prefix); });
}

/// Old versions told of their window by the low half of its handle alone.
bool SameLowHalf(WindowHandle a, WindowHandle b) {
  return static_cast<std::uint16_t>(a) == static_cast<std::uint16_t>(b);
}

bool IsOfThisExcel(const WindowFacts& window) {
  return window.excelVersion >= kExcelOfManyMainWindows ? window.processId == window.ownProcessId
                                                        : SameLowHalf(window.parent, window.excelWindow);
}

}  // namespace

bool CXlFormulaWizardDetector::IsDialogClass(XStringView className) noexcept {
  return className.starts_with(kClassPrefix);
}

bool CXlFormulaWizardDetector::IsWizard(const WindowFacts& window) noexcept {
  return IsOfThisExcel(window) && IsDialogClass(window.className) &&
         (BeginsWithOne(window.title, kIdentifyingTitles) || !BeginsWithOne(window.title, kExcludingTitles));
}

}  // namespace quillmere
