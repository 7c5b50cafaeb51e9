// Two numbers at a time.
#pragma once

#include <cstring>

namespace quillmere::series {

/// What every processor of ours works on at once.
using Pair = double __attribute__((vector_size(16)));
using Bits = long long __attribute__((vector_size(16)));

inline Pair LoadPair(const double* from) noexcept {
  Pair pair;
  std::memcpy(&pair, from, sizeof pair);
  return pair;
}

inline void StorePair(double* to, Pair pair) noexcept { std::memcpy(to, &pair, sizeof pair); }

}  // namespace quillmere::series
