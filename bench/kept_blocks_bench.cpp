// What the memory of large results costs: a stack of one block whose cells take 1, 10 and 100 MB, in the first call and
// in later ones, beside a plain copy of the cells and texts into memory that was touched before. A benchmark's argument
// is the megabytes of cells.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"
#include "frame/values/kept_blocks.h"

namespace quillmere {
namespace {

constexpr int kColumns = 8;

/// Numbers alone, or two columns of texts of eight units among them.
std::unique_ptr<HostArray> Block(const benchmark::State& state, bool withTexts) {
  const int rows = static_cast<int>((state.range(0) << 20) / static_cast<std::int64_t>(kColumns * sizeof(XLOPER12)));
  auto block = std::make_unique<HostArray>(rows, kColumns);
  for (int at = 0; at < rows * kColumns; ++at) {
    if (withTexts && at % kColumns < 2)
      block->SetText(at, CountedText(XTEXT('K'), at));
    else
      block->cells[at] = NumberCell(at * 0.25);
  }
  return block;
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int megabytes : {1, 10, 100}) benchmark->Arg(megabytes);
  benchmark->Unit(benchmark::kMicrosecond);
}

/// The floor.
void CopyIntoTouchedMemory(benchmark::State& state, bool withTexts) {
  const auto block = Block(state, withTexts);
  std::vector<XLOPER12> cells(block->cells.size());
  std::vector<XCHAR> texts(withTexts ? cells.size() / kColumns * 2 * 9 : 0);
  for (auto _ : state) {
    XCHAR* text = texts.data();
    XLOPER12* to = cells.data();
    for (const XLOPER12& cell : block->cells) {
      *to = cell;
      if (IsTextCell(cell)) {
        std::memcpy(text, cell.val.str, (cell.val.str[0] + std::size_t{1}) * sizeof(XCHAR));
        to->val.str = text;
        text += cell.val.str[0] + 1;
      }
      ++to;
    }
    benchmark::DoNotOptimize(cells.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK_CAPTURE(CopyIntoTouchedMemory, Numbers, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(CopyIntoTouchedMemory, Texts, true)->Apply(AllSizes);

void CallStack(const HostArray& block) {
  [&block]<std::size_t... at>(std::index_sequence<at...>) {
    CallAsExcel(&VSTACK_12, nullptr, block.value, (static_cast<void>(at), nullptr)...);
  }
  (std::make_index_sequence<28>());
}

void LaterCalls(benchmark::State& state, bool withTexts) {
  const auto block = Block(state, withTexts);
  CallStack(*block);
  for (auto _ : state) CallStack(*block);
}
BENCHMARK_CAPTURE(LaterCalls, Numbers, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(LaterCalls, Texts, true)->Apply(AllSizes);

void FirstCall(benchmark::State& state, bool withTexts) {
  const auto block = Block(state, withTexts);
  for (auto _ : state) {
    state.PauseTiming();
    ReleaseKeptBlocks();
    state.ResumeTiming();
    CallStack(*block);
  }
}
BENCHMARK_CAPTURE(FirstCall, Numbers, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(FirstCall, Texts, true)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
