// Random calls of the lookup functions: small tables full of duplicates, and large ones now and then.
#pragma once

#include <cstdint>

#include "tests/models/lookup/model.h"

namespace qcalc::lookup {

/// What a drawn call has a table of.
enum class TableKind { kArray, kReference };

/// Draws the call of that number. All of it follows from the seed and the number alone. Calls avoid what the rules
/// leave open: the order of texts that Excel sorts by language, and remembered rows with errors for keys.
LookupCall DrawCall(std::uint64_t seed, std::uint64_t number, TableKind kind, const models::CallingPlaces& places);

}  // namespace qcalc::lookup
