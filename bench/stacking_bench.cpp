// What stacking costs beside a plain copy of cells and texts into fresh memory: 29 blocks by 5 columns of mixed cells
// (number, text, text, number, boolean). A benchmark's argument is the number of rows of all blocks.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

#include "bench/stack_call.h"
#include "exports.h"

namespace quillmere {
namespace {

constexpr int kBlocks = 29;
constexpr int kColumns = 5;

int BlockRows(const benchmark::State& state) { return static_cast<int>(state.range(0)) / kBlocks; }

/// Texts of one block, the headers included.
constexpr int TextsOf(int blockRows) { return blockRows * 2 + kColumns; }

/// Blocks whose first row holds the headers A to E, in an order that turns from block to block if `turned`.
Blocks MixedBlocks(int blockRows, bool turned) {
  Blocks blocks;
  for (int block = 0; block < kBlocks; ++block) {
    blocks.push_back(std::make_unique<HostArray>(blockRows, kColumns));
    HostArray& array = *blocks.back();
    for (int at = 0; at < blockRows * kColumns; ++at) {
      const int kind = (at % kColumns + (turned ? block : 0)) % kColumns;
      if (at < kColumns) {
        array.SetText(at, CountedText(static_cast<XCHAR>(XTEXT('A') + kind), 0));
      } else if (kind == 1 || kind == 2) {
        array.SetText(at, CountedText(XTEXT('K'), at * 7919 % 9'999'991));
      } else {
        array.cells[at] = kind == 4 ? BooleanCell(at % 2 == 0) : NumberCell(at * 0.25);
      }
    }
  }
  return blocks;
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 870'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMillisecond);
}

/// The floor: cells and texts copied one by one, nothing checked, into memory never touched before.
void PlainCopy(benchmark::State& state) {
  const int blockRows = BlockRows(state);
  const auto blocks = MixedBlocks(blockRows, false);
  for (auto _ : state) {
    const auto cells = std::make_unique_for_overwrite<XLOPER12[]>(std::size_t{kBlocks} * blockRows * kColumns);
    const auto texts = std::make_unique_for_overwrite<XCHAR[]>(std::size_t{kBlocks} * TextsOf(blockRows) * 9);
    CopyPlainly(blocks, cells.get(), texts.get());
    benchmark::DoNotOptimize(cells.get());
    benchmark::DoNotOptimize(texts.get());
  }
}
BENCHMARK(PlainCopy)->Apply(AllSizes);

template <class Export>
void Stack(benchmark::State& state, Export function) {
  const auto blocks = MixedBlocks(BlockRows(state), false);
  for (auto _ : state) CallStack(function, blocks);
}
BENCHMARK_CAPTURE(Stack, Down, &VSTACK_12)->Apply(AllSizes);
BENCHMARK_CAPTURE(Stack, Across, &HSTACK_12)->Apply(AllSizes);

void StackByHeader(benchmark::State& state, bool turned) {
  const auto blocks = MixedBlocks(BlockRows(state), turned);
  for (auto _ : state) CallStack(&HDR_VSTACK_12, blocks);
}
BENCHMARK_CAPTURE(StackByHeader, SameOrder, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(StackByHeader, OtherOrder, true)->Apply(AllSizes);

/// As many headers as a sheet has columns, two rows a block, the columns backwards in every other block.
void StackWideByHeader(benchmark::State& state) {
  Blocks blocks;
  for (int block = 0; block < kBlocks; ++block) {
    blocks.push_back(std::make_unique<HostArray>(2, kXlMaxColumns));
    for (int column = 0; column < kXlMaxColumns; ++column) {
      const int header = block % 2 == 0 ? column : kXlMaxColumns - 1 - column;
      blocks.back()->SetText(column, CountedText(XTEXT('h'), header));
      blocks.back()->cells[kXlMaxColumns + column] = NumberCell(header);
    }
  }
  for (auto _ : state) CallStack(&HDR_VSTACK_12, blocks);
}
BENCHMARK(StackWideByHeader)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillmere
