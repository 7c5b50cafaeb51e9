// Calling worksheet functions as Excel does, for the benchmarks.
#pragma once

#include <benchmark/benchmark.h>

#include "frame/values/value_memory.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// An argument as Excel passes it; a null pointer is one left out.
inline XLOPER12* Passed(const CXlOper& value) { return value.ForCallback(); }
inline XLOPER12* Passed(const XLOPER12& value) { return const_cast<XLOPER12*>(&value); }
inline XLOPER12* Passed(XLOPER12* value) { return value; }
inline XLOPER12* Passed(std::nullptr_t) { return nullptr; }
inline std::int32_t Passed(std::int32_t value) { return value; }

/// Calls an export and gives what it returns back.
template <class Export, class... Arguments>
void CallAsExcel(Export function, const Arguments&... arguments) {
  XLOPER12* const answer = function(Passed(arguments)...);
  benchmark::DoNotOptimize(answer);
  ReleaseOwned(*answer);
}

}  // namespace quillmere
