// Sorting machine words.
#pragma once

#include <cstdint>
#include <span>

namespace quillmere {

/// Sorts words by their value. They differ, apart from the lowest `steady` bits, in the `bits` bits above those alone;
/// words that are equal there stand in the order of their lowest bits already. `spare` is as long as `words`; its
/// contents are lost.
void SortWords(std::span<std::uint64_t> words, std::span<std::uint64_t> spare, int steady, int bits);

}  // namespace quillmere
