// What reading a reference by blocks costs beside one callback for the whole of it, from a host that does no more than
// to write the cells it is asked for. The argument is the number of columns; a sheet's full height is read and summed.
#include <benchmark/benchmark.h>

#include "bench/excel_answers.h"
#include "table/row_blocks.h"

namespace quillmere {
namespace {

CXlOper FullHeight(const benchmark::State& state) {
  InstallExcelAnswers();
  return CXlOper::Reference(XLREF12{0, kXlMaxRows - 1, 0, static_cast<COL>(state.range(0)) - 1});
}

void ReadByBlocks(benchmark::State& state) {
  const CXlOper reference = FullHeight(state);
  const TableView table(reference);
  for (auto _ : state) {
    double sum = 0;
    for (RowBlocks blocks(table); blocks.Next();)
      for (std::int32_t row = 0; row < blocks.Rows(); ++row)
        for (std::int32_t column = 0; column < table.Columns(); ++column) sum += CellNumber(blocks.At(row, column));
    benchmark::DoNotOptimize(sum);
  }
}

void ReadWhole(benchmark::State& state) {
  const CXlOper reference = FullHeight(state);
  const TableView table(reference);
  for (auto _ : state) {
    double sum = 0;
    const CXlOper whole = table.CoercePart(0, 0, table.Rows(), table.Columns());
    const CXlCells cells = whole.Cells();
    for (std::int64_t at = 0; at < cells.Count(); ++at) sum += CellNumber(cells.first[at]);
    benchmark::DoNotOptimize(sum);
  }
}

BENCHMARK(ReadByBlocks)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadWhole)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillmere
