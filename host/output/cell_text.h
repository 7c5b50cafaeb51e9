// A cell as files of other programs hold it.
#pragma once

#include <string>

#include "host/values/cell_view.h"

namespace qcalc {

/// Each appends to `out`, in UTF-8, where a lone surrogate, which that cannot write, is U+FFFD; numbers in as many
/// digits as tell them apart.

/// A field of RFC 4180: an empty cell as nothing, a text of length zero as "".
void AppendCsvField(std::string& out, const CellView& cell);
/// An empty cell as null, an error as {"error":"#N/A"}.
void AppendJsonCell(std::string& out, const CellView& cell);
/// A text in quotes.
void AppendJsonText(std::string& out, XStringView text);

}  // namespace qcalc
