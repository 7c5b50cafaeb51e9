// What a book's metadata say of its cells.
#pragma once

#include <string>
#include <vector>

#include "host/xlsx/package.h"

namespace qcalc {

/// For each of the book's cell metadata (a cell's `cm`, which counts from 1) whether it marks an array formula as one
/// that spills.
std::vector<bool> ReadCellMetadata(const Package& package, const std::string& part);

}  // namespace qcalc
