// Counts as people read them.
#pragma once

#include <cstdint>
#include <string>

namespace qcalc {

/// 1234567 as "1,234,567"; not negative.
std::string Grouped(std::int64_t count);

/// The noun as it stands behind that count: "value" behind 1, else "values".
std::string NounFor(std::int64_t count, const std::string& noun);

}  // namespace qcalc
