// What no entry can show by itself: names and ids that meet, uses of an implementation that disagree, lists that grow
// too long for Excel.
#pragma once

#include <vector>

#include "functions/generator/diagnostics.h"
#include "functions/generator/function_table.h"

namespace quillmere::generator {

/// Checks all families together.
void CheckTables(const std::vector<Family>& families, Diagnostics& diagnostics);

}  // namespace quillmere::generator
