// The threads of this process.
#pragma once

#include <cstdint>
#include <set>

namespace qcalc {

class Library;

/// A number for each, which no later one has. With a library, those alone in which its code may run: on Windows those
/// that it or the C runtime started; natively all.
std::set<std::uint64_t> RunningThreads(const Library* library);

}  // namespace qcalc
