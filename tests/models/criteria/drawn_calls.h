// Random calls of the criteria functions: small tables full of equal rows, and large ones now and then.
#pragma once

#include <cstdint>

#include "tests/models/criteria/model.h"

namespace qcalc::criteria {

/// Draws the call of that number. All of it follows from the seed and the number alone. What a call declares as sorted
/// is in the order that its criteria ask for.
FilterCall DrawCall(std::uint64_t seed, std::uint64_t number, bool isReference);

}  // namespace qcalc::criteria
