// Which CSV file to load, and how: as commands write it.
#pragma once

#include <string>
#include <string_view>

#include "host/files/csv.h"
#include "host/text/syntax_error.h"

namespace qcalc {

struct CsvRequest {
  std::string path;  ///< UTF-8
  CsvOptions options;
};

/// Reads `FILE [separator C] [text COLUMNS]`. The options are read from the end, each once and in either order; an end
/// that is no option belongs to the path, which may hold blanks and may stand in quotes. C is one character, which may
/// stand in quotes, or `tab`; COLUMNS are letters (`A,C:E`) or labels in quotes (`"Item no"`), commas between them.
Parsed<CsvRequest> ParseCsvRequest(std::string_view text);

}  // namespace qcalc
