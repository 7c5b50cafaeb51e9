// What the exponential averages of series start with.
#pragma once

#include <cstdint>

#include "frame/values/scratch_array.h"
#include "series/series_table.h"

namespace quillmere::series {

/// The average of the first `count` numbers of each series, one at least and no more than there are.
ScratchArray<double> FirstAverages(const SeriesTable& table, const SeriesShape& shape, std::int32_t count);

/// The exponential average of each series, run backwards from its last number, which it starts with, to its first.
ScratchArray<double> Backcasts(const SeriesTable& table, const SeriesShape& shape, double alpha);

}  // namespace quillmere::series
