// What the memory of large results costs: a stack of one block whose cells take 1, 10 and 100 MB, in the first call and
// in later ones, beside a plain copy of the cells and texts into memory that was touched before. A benchmark's argument
// is the megabytes of cells.
#include <benchmark/benchmark.h>

#include <memory>
#include <utility>
#include <vector>

#include "bench/stack_call.h"
#include "exports.h"
#include "frame/values/kept_blocks.h"

namespace quillmere {
namespace {

constexpr int kColumns = 8;

/// Numbers alone, or two columns of texts of eight units among them.
Blocks OneBlock(const benchmark::State& state, bool withTexts) {
  const int rows = static_cast<int>((state.range(0) << 20) / static_cast<std::int64_t>(kColumns * sizeof(XLOPER12)));
  auto block = std::make_unique<HostArray>(rows, kColumns);
  for (int at = 0; at < rows * kColumns; ++at) {
    if (withTexts && at % kColumns < 2)
      block->SetText(at, CountedText(XTEXT('K'), at));
    else
      block->cells[at] = NumberCell(at * 0.25);
  }
  Blocks blocks;
  blocks.push_back(std::move(block));
  return blocks;
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int megabytes : {1, 10, 100}) benchmark->Arg(megabytes);
  benchmark->Unit(benchmark::kMicrosecond);
}

/// The floor.
void CopyIntoTouchedMemory(benchmark::State& state, bool withTexts) {
  const Blocks blocks = OneBlock(state, withTexts);
  std::vector<XLOPER12> cells(blocks[0]->cells.size());
  std::vector<XCHAR> texts(withTexts ? cells.size() / kColumns * 2 * 9 : 0);
  for (auto _ : state) {
    CopyPlainly(blocks, cells.data(), texts.data());
    benchmark::DoNotOptimize(cells.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK_CAPTURE(CopyIntoTouchedMemory, Numbers, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(CopyIntoTouchedMemory, Texts, true)->Apply(AllSizes);

void LaterCalls(benchmark::State& state, bool withTexts) {
  const Blocks blocks = OneBlock(state, withTexts);
  CallStack(&VSTACK_12, blocks);
  for (auto _ : state) CallStack(&VSTACK_12, blocks);
}
BENCHMARK_CAPTURE(LaterCalls, Numbers, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(LaterCalls, Texts, true)->Apply(AllSizes);

void FirstCall(benchmark::State& state, bool withTexts) {
  const Blocks blocks = OneBlock(state, withTexts);
  for (auto _ : state) {
    state.PauseTiming();
    ReleaseKeptBlocks();
    state.ResumeTiming();
    CallStack(&VSTACK_12, blocks);
  }
}
BENCHMARK_CAPTURE(FirstCall, Numbers, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(FirstCall, Texts, true)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
