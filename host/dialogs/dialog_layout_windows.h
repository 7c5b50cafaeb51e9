// Where everything stands in a Function Arguments dialog, and the drawing of what is no window of its own.
#pragma once

#include <windows.h>

#include <vector>

#include "host/dialogs/function_dialog.h"

namespace qcalc {

/// What the dialog draws itself.
struct DrawnElement {
  XString text;
  LONG role;  ///< as accessibility numbers them (ROLE_SYSTEM_...)
  RECT place;
  bool isBold = false;
  bool isGrey = false;
  bool isNamed = true;  ///< whether it is one of the elements that can be asked for
};

/// Places in pixels of the client area.
namespace dialog_layout {

inline constexpr SIZE kClient{540, 326};
inline constexpr RECT kBar{510, 24, 527, 150};
inline constexpr RECT kOk{372, 294, 448, 317};
inline constexpr RECT kCancel{456, 294, 532, 317};

/// The `box`-th edit box from above.
RECT Box(std::size_t box);

/// All that is drawn while that argument is the current one.
std::vector<DrawnElement> Elements(const DialogContents& contents, std::size_t currentArgument);

}  // namespace dialog_layout

/// The dialog's font, plain and bold.
class DialogFonts {
 public:
  DialogFonts();
  ~DialogFonts();
  DialogFonts(const DialogFonts&) = delete;
  DialogFonts& operator=(const DialogFonts&) = delete;

  HFONT Plain() const { return plain_; }
  HFONT Bold() const { return bold_; }

 private:
  HFONT plain_;
  HFONT bold_;
};

void Draw(HDC device, const std::vector<DrawnElement>& elements, const DialogFonts& fonts);

}  // namespace qcalc
