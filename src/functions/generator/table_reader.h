// Reads one family's table.
#pragma once

#include <string>
#include <string_view>

#include "functions/generator/diagnostics.h"
#include "functions/generator/function_table.h"

namespace quillmere::generator {

/// Reads a table from its text. `path` names it in diagnostics and gives the family its name. Mistakes that one field
/// or one entry shows by itself are reported here; what is read is then incomplete.
Family ReadFamily(const std::string& path, std::string_view text, Diagnostics& diagnostics);

}  // namespace quillmere::generator
