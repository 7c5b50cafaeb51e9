// What the add-in learns about its Excel once, at opening.
#pragma once

#include "xlcall/xlcall.h"

namespace quillmere {

/// Facts about the running Excel. The defaults hold until the add-in is opened and wherever Excel gives no answer.
struct ExcelSettings {
  int version = 0;                  ///< main version number: 16 for "16.0"
  bool excel12OrLater = false;      ///< decides limits of references, texts of errors and the way of unregistering
  XCHAR rowLetter = XTEXT('R');     ///< stands for the row in R1C1 references
  XCHAR columnLetter = XTEXT('C');  ///< stands for the column in R1C1 references
};

/// The settings of this process. Written on Excel's main thread at opening, before any function can be called.
ExcelSettings& CurrentExcelSettings() noexcept;

/// The decimal separator in use: "." until another is set at opening. Any thread.
XCHAR DecimalSeparator() noexcept;
void SetDecimalSeparator(XCHAR separator) noexcept;

/// Asks Excel for its version. 0 where it gives none; where it cannot read its own version text as a number (its
/// decimal separator is not a point), the digits before the point count.
void DetectExcelVersion() noexcept;

/// Asks Excel for the letters of R1C1 references and for the decimal separator. What Excel does not answer keeps its
/// default.
void ReadLocalSettings() noexcept;

}  // namespace quillmere
