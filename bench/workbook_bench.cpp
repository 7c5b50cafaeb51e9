// What keeping values between calls costs beyond the callbacks that ask for the calling cell, and beside a plain copy;
// and the filter of visible rows beside the callbacks that it cannot do without.
#include <benchmark/benchmark.h>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"
#include "frame/callbacks/callbacks.h"

namespace quillmere {
namespace {

CXlOper AskForCaller() {
  const CXlOper caller = CallExcel(xlfCaller);
  return CallExcel(xlSheetNm, caller);
}

void CallbacksAlone(benchmark::State& state) {
  InstallExcelAnswers();
  for (auto _ : state) benchmark::DoNotOptimize(AskForCaller());
}
BENCHMARK(CallbacksAlone)->Threads(1)->Threads(8);

const XLOPER12 kNumber = NumberCell(7);

void KeepNumber(benchmark::State& state) {
  InstallExcelAnswers();
  for (auto _ : state) CallAsExcel(SETMEM_12, kNumber, nullptr);
}
BENCHMARK(KeepNumber)->Threads(1)->Threads(8);

void ReadNumber(benchmark::State& state) {
  InstallExcelAnswers();
  CallAsExcel(SETMEM_12, kNumber, nullptr);
  for (auto _ : state) CallAsExcel(GETMEM_12, nullptr);
}
BENCHMARK(ReadNumber)->Threads(1)->Threads(8);

HostArray Numbers(std::int64_t rows) {
  HostArray array(static_cast<int>(rows), 1);
  for (int row = 0; row < rows; ++row) array.At(row, 0) = NumberCell(row);
  return array;
}

void CopyArray(benchmark::State& state) {
  const HostArray array = Numbers(state.range(0));
  const CXlOper borrowed = CXlOper::Borrow(&array.value);
  for (auto _ : state) benchmark::DoNotOptimize(borrowed.Clone());
}
BENCHMARK(CopyArray)->Arg(1000)->Arg(100'000)->Arg(1'000'000);

void KeepArray(benchmark::State& state) {
  InstallExcelAnswers();
  const HostArray array = Numbers(state.range(0));
  for (auto _ : state) CallAsExcel(SETMEM_12, array.value, nullptr);
  CallAsExcel(SETMEM_12, kNumber, nullptr);
}
BENCHMARK(KeepArray)->Arg(1000)->Arg(100'000)->Arg(1'000'000);

void ReadArray(benchmark::State& state) {
  InstallExcelAnswers();
  CallAsExcel(SETMEM_12, Numbers(state.range(0)).value, nullptr);
  for (auto _ : state) CallAsExcel(GETMEM_12, nullptr);
  CallAsExcel(SETMEM_12, kNumber, nullptr);
}
BENCHMARK(ReadArray)->Arg(1000)->Arg(100'000)->Arg(1'000'000);

CXlOper Rows(std::int64_t rows) { return CXlOper::Reference({0, static_cast<RW>(rows) - 1, 0, 3}); }

void HeightsAndCells(benchmark::State& state) {
  InstallExcelAnswers();
  const CXlOper height = CXlOper::Integer(17);
  for (auto _ : state) {
    for (RW row = 0; row < state.range(0); ++row)
      benchmark::DoNotOptimize(CallExcel(xlfGetCell, height, CXlOper::Reference({row, row, 0, 0})));
    benchmark::DoNotOptimize(CallExcel(xlCoerce, Rows(state.range(0))));
  }
}
BENCHMARK(HeightsAndCells)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

void FilterVisible(benchmark::State& state) {
  InstallExcelAnswers();
  const CXlOper range = Rows(state.range(0));
  for (auto _ : state) CallAsExcel(FILTER_VISIBLE_12, range, nullptr);
}
BENCHMARK(FilterVisible)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmere
