// A run of like arguments: Arg1 ... Arg29, Col1 ... and so on.
#pragma once

#include <cstddef>
#include <span>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// N arguments in registered order, viewed where the wrapper holds them.
template <std::size_t N>
using CXlOperRun = std::span<const CXlOper, N>;

}  // namespace quillmere
