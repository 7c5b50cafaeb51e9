// Random calls of the sorts, distinct lists, joins and comparisons: small tables full of equal and nearly equal cells,
// and large ones now and then.
#pragma once

#include <cstdint>

#include "tests/models/sort/call.h"

namespace qcalc::sort {

/// Each draws the call of that number. All of it follows from the seed and the number alone. Calls avoid what the rules
/// leave open, and texts that the native builds of add-in and host order each in its own way.
Call DrawSort(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places);
Call DrawDistinct(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places);
Call DrawJoin(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places);

}  // namespace qcalc::sort
