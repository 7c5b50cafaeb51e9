// What building an array result costs beside the bare copy of its memory: 29 blocks of 30,000 rows by 5 columns, two
// columns of them texts of 8 to 20 units.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "frame/values/array_builder.h"
#include "frame/values/value_memory.h"

namespace quillmere {
namespace {

constexpr int kBlocks = 29;
constexpr int kBlockRows = 30'000;
constexpr int kColumns = 5;
constexpr std::size_t kBlockCells = std::size_t{kBlockRows} * kColumns;

/// The source: blocks of cells whose texts lie one behind the other, as a host lends them.
struct Blocks {
  std::vector<std::vector<XLOPER12>> cells;
  std::vector<std::vector<XCHAR>> texts;
};

XLOPER12 NextCell(int column, std::mt19937& random, std::vector<XCHAR>& texts) {
  if (column == 0 || column == 3) return NumberCell(static_cast<double>(random()));
  if (column == 4) return BooleanCell(random() % 2 == 0);
  const std::size_t units = 8 + random() % 13;
  XLOPER12 cell{};
  cell.val.str = texts.data() + texts.size();
  cell.xltype = xltypeStr;
  texts.push_back(static_cast<XCHAR>(units));
  for (std::size_t at = 0; at < units; ++at) texts.push_back(static_cast<XCHAR>(XTEXT('a') + random() % 26));
  return cell;
}

const Blocks& Source() {
  static const Blocks source = [] {
    Blocks blocks;
    std::mt19937 random(1);
    for (int block = 0; block < kBlocks; ++block) {
      std::vector<XCHAR>& texts = blocks.texts.emplace_back();
      texts.reserve(kBlockCells * 21);
      std::vector<XLOPER12>& cells = blocks.cells.emplace_back();
      cells.reserve(kBlockCells);
      for (std::size_t at = 0; at < kBlockCells; ++at)
        cells.push_back(NextCell(static_cast<int>(at % kColumns), random, texts));
    }
    return blocks;
  }();
  return source;
}

/// The floor: the same bytes, cells and texts, moved by memcpy into memory never touched before.
void CopyMemory(benchmark::State& state) {
  const Blocks& source = Source();
  for (auto _ : state) {
    std::vector<std::unique_ptr<char[]>> texts;
    const auto cells = std::make_unique_for_overwrite<char[]>(kBlocks * kBlockCells * sizeof(XLOPER12));
    for (int block = 0; block < kBlocks; ++block) {
      std::memcpy(cells.get() + block * kBlockCells * sizeof(XLOPER12), source.cells[block].data(),
                  kBlockCells * sizeof(XLOPER12));
      const std::size_t bytes = source.texts[block].size() * sizeof(XCHAR);
      texts.push_back(std::make_unique_for_overwrite<char[]>(bytes));
      std::memcpy(texts.back().get(), source.texts[block].data(), bytes);
    }
    benchmark::DoNotOptimize(cells.get());
  }
}
BENCHMARK(CopyMemory)->Unit(benchmark::kMillisecond);

/// Blocks under each other: whole blocks are contiguous in the result.
void StackBlocks(benchmark::State& state) {
  const Blocks& source = Source();
  for (auto _ : state) {
    CXlArrayBuilder builder(std::int64_t{kBlocks} * kBlockRows, kColumns);
    for (int block = 0; block < kBlocks; ++block)
      builder.CopyCells(builder.Row(std::int64_t{block} * kBlockRows), source.cells[block].data(), kBlockCells);
    const CXlOper result = builder.Finish();
    benchmark::DoNotOptimize(&result);
  }
}
BENCHMARK(StackBlocks)->Unit(benchmark::kMillisecond);

/// Blocks side by side: each row of a block is a run of its own.
void JoinBlocks(benchmark::State& state) {
  const Blocks& source = Source();
  for (auto _ : state) {
    CXlArrayBuilder builder(kBlockRows, kBlocks * kColumns);
    for (int row = 0; row < kBlockRows; ++row)
      for (int block = 0; block < kBlocks; ++block)
        builder.CopyCells(builder.At(row, block * kColumns), source.cells[block].data() + row * kColumns, kColumns);
    const CXlOper result = builder.Finish();
    benchmark::DoNotOptimize(&result);
  }
}
BENCHMARK(JoinBlocks)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillmere
