// Stacking: blocks below one another or side by side, as they come or matched by headers.
//
// Serves VSTACK, VSTACKF, HSTACK, HSTACKF, HDR.VSTACK, HDR.HSTACK, ROW.ARRAY, COL.ARRAY.
//
// Both directions are one piece of code: shape/stacked_lines.h has its words.
#include <algorithm>
#include <optional>
#include <span>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/convert/single_value.h"
#include "frame/text/integer_text.h"
#include "frame/values/array_builder.h"
#include "shape/stacked_lines.h"
#include "table/header_index.h"

namespace quillmere::shape {
namespace {

/// One range, array or single value to be stacked.
struct Block {
  CXlCells cells;
  bool isSingleValue;
  int argumentNumber;  ///< of ArgN; 0 for the block that came in the place of the fill value
};

struct StackArguments {
  std::vector<Block> blocks;
  XLOPER12 fill = ErrorCell(xlerrNA);
  bool hasHeaderBlock = false;  ///< the first block stands where the headers are looked for
};

/// An array of several cells in the place of the fill value is the first block.
StackArguments ReadArguments(const CXlArgument& fill, const CXlArgumentRun<29>& blocks) {
  const XLOPER12* const fillCell = OnlyCell(fill.Value());
  StackArguments read;
  if (fillCell && fill.IsGiven()) read.fill = *fillCell;
  read.blocks.reserve(blocks.Count() + 1);
  if (!fillCell) read.blocks.push_back({fill.Value().Cells(), false, 0});
  for (std::size_t i = 0; i < blocks.Count(); ++i) {
    const CXlArgument argument = blocks[i];
    if (!argument.IsGiven()) continue;
    const CXlOper& block = argument.Value();
    read.blocks.push_back({block.Cells(), !block.IsArray(), static_cast<int>(i) + 1});
  }
  read.hasHeaderBlock = !fillCell || blocks[0].IsGiven();
  return read;
}

/// A block's first line across the lanes.
CellLine Headers(const CXlCells& cells, StackDirection direction) {
  return IsAcross(direction) ? ColumnLine(cells, 0) : RowLine(cells, 0);
}

void CheckSize(std::int64_t along, std::int64_t lanes, StackDirection direction) {
  IsAcross(direction) ? CheckArraySize(lanes, along) : CheckArraySize(along, lanes);
}

/// A later block's share of a stack by headers: the positions along that it supplies.
AxisMap DataPositions(const Block& block, StackDirection direction) {
  return block.isSingleValue ? AxisMap::Run(0, 1) : AxisMap::Run(1, Along(block.cells, direction) - 1);
}

/// Whether a later block is an array of one cell: it makes the stack by headers longer by a position, which stays empty
/// behind all blocks.
bool LeavesPosition(const Block& block) { return !block.isSingleValue && block.cells.Count() == 1; }

/// Where the lanes of the result are supplied from in a later block, kept in `places` where headers say so; nothing
/// when no header matches.
std::optional<AxisMap> MatchedLanes(const HeaderIndex& index, const Block& block, StackDirection direction,
                                    std::int32_t lanes, std::vector<std::int32_t>& places) {
  if (block.isSingleValue) return AxisMap::Repeated(lanes);
  places = index.Match(Headers(block.cells, direction));
  if (places.empty()) return std::nullopt;
  return AxisMap::By(places);
}

void SetNoMatch(CXlOper& result, int argumentNumber) {
  XString text = XTEXT("#Error: No header matches found for Arg");
  text += IntegerText(argumentNumber).View();
  result.SetText(text);
}

}  // namespace

void Functions::Stack(CXlOper& result, StackDirection direction, ScalarBlock scalarBlock, const CXlArgument& fill,
                      const CXlArgumentRun<29>& blocks) {
  result.SetError(xlerrValue);
  const StackArguments arguments = ReadArguments(fill, blocks);
  if (arguments.blocks.empty()) return;

  std::int64_t along = 0;
  std::int32_t lanes = 0;
  for (const Block& block : arguments.blocks) {
    along += Along(block.cells, direction);
    lanes = std::max(lanes, Lanes(block.cells, direction));
  }
  CheckSize(along, lanes, direction);

  std::vector<ArrayPiece> pieces;
  pieces.reserve(arguments.blocks.size());
  for (const Block& block : arguments.blocks) {
    const std::int32_t length = Along(block.cells, direction);
    const bool isRepeated = block.isSingleValue && scalarBlock == ScalarBlock::kRepeated;
    const AxisMap across = isRepeated ? AxisMap::Repeated(lanes) : AxisMap::Run(0, Lanes(block.cells, direction));
    pieces.push_back(PieceOf(block.cells, AxisMap::Run(0, length), across.PaddedTo(lanes), direction));
  }
  result = PaintStack(pieces, IsAcross(direction), arguments.fill);
}

void Functions::StackByHeader(CXlOper& result, StackDirection direction, const CXlArgument& fill,
                              const CXlArgumentRun<29>& blocks) {
  result.SetError(xlerrValue);
  const StackArguments arguments = ReadArguments(fill, blocks);
  if (!arguments.hasHeaderBlock) return;

  const Block& first = arguments.blocks.front();
  HeaderIndex index;
  if (!index.Read(Headers(first.cells, direction))) {
    result.SetText(IsAcross(direction) ? XTEXT("#Error: Invalid header column") : XTEXT("#Error: Invalid header row"));
    return;
  }

  const std::span later = std::span(arguments.blocks).subspan(1);
  const std::int32_t lanes = Lanes(first.cells, direction);
  const std::int32_t firstLength = Along(first.cells, direction);
  const auto left = static_cast<std::int32_t>(std::ranges::count_if(later, LeavesPosition));
  std::int64_t along = std::int64_t{firstLength} + left;
  for (const Block& block : later) along += DataPositions(block, direction).length;
  CheckSize(along, lanes, direction);

  std::vector<ArrayPiece> pieces;
  pieces.reserve(arguments.blocks.size() + 1);
  std::vector<std::vector<std::int32_t>> matches(arguments.blocks.size());
  pieces.push_back(PieceOf(first.cells, AxisMap::Run(0, firstLength), AxisMap::Run(0, lanes), direction));
  for (const Block& block : later) {
    const AxisMap positions = DataPositions(block, direction);
    if (positions.length == 0) continue;
    std::vector<std::int32_t>& places = matches[pieces.size()];
    const std::optional<AxisMap> matched = MatchedLanes(index, block, direction, lanes, places);
    if (!matched) {
      SetNoMatch(result, block.argumentNumber);
      return;
    }
    pieces.push_back(PieceOf(block.cells, positions, *matched, direction));
  }
  if (left != 0) pieces.push_back(PieceOf(first.cells, AxisMap().PaddedTo(left), AxisMap().PaddedTo(lanes), direction));
  result = PaintStack(pieces, IsAcross(direction), arguments.fill);
}

}  // namespace quillmere::shape
