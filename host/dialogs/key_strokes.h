// Keys as scripts name them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/text/syntax_error.h"
#include "xlcall/xchar.h"

namespace qcalc {

/// One key that is pressed and let go while others are held, or a unit of a text that is typed.
struct KeyStroke {
  bool withAlt = false;
  bool withControl = false;
  bool withShift = false;
  std::uint16_t key = 0;  ///< as Windows numbers its virtual keys; 0 for a unit of a text
  XCHAR unit = 0;
};

/// Reads names of keys and texts in quotes (a quote in one is doubled), parted by blanks: `Alt+Down Down Enter "-1"`.
/// At least one.
Parsed<std::vector<KeyStroke>> ParseKeyStrokes(std::string_view text);

}  // namespace qcalc
