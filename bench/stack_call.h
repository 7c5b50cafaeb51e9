// Calls of the stacking functions, and the plain copy that such calls are held against.
#pragma once

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "bench/excel_call.h"
#include "bench/host_array.h"

namespace quillmere {

using Blocks = std::vector<std::unique_ptr<HostArray>>;

/// Calls a stacking function with the blocks, without a fill value.
template <class Export>
void CallStack(Export function, const Blocks& blocks) {
  const auto block = [&blocks](std::size_t at) { return at < blocks.size() ? &blocks[at]->value : nullptr; };
  [&]<std::size_t... at>(std::index_sequence<at...>) { CallAsExcel(function, nullptr, block(at)...); }
  (std::make_index_sequence<29>());
}

/// Copies cells and texts one by one, nothing checked; there must be room for all.
inline void CopyPlainly(const Blocks& blocks, XLOPER12* to, XCHAR* text) {
  for (const auto& block : blocks) {
    for (const XLOPER12& cell : block->cells) {
      *to = cell;
      if (IsTextCell(cell)) {
        std::memcpy(text, cell.val.str, (cell.val.str[0] + std::size_t{1}) * sizeof(XCHAR));
        to->val.str = text;
        text += cell.val.str[0] + 1;
      }
      ++to;
    }
  }
}

}  // namespace quillmere
