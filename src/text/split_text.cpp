// Texts split into tokens at delimiters.
//
// Serves SPLIT.TEXT.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frame/convert/argument.h"
#include "frame/convert/cell_text.h"
#include "frame/values/array_builder.h"
#include "frame/values/cell_copy.h"
#include "implementations/text.h"
#include "text/tokens.h"

namespace quillmere::text {
namespace {

/// How texts are split.
struct Splitting {
  DelimiterSet delimiters;
  EmptyTokens empty;
};

/// The tokens of each text that are wanted: `count` from `first` on, counted from 0.
struct WantedTokens {
  std::int64_t first;
  std::int64_t count;
};

void AddDelimiters(DelimiterSet& delimiters, const CXlCells& cells) {
  for (std::int64_t at = 0; at < cells.Count(); ++at) {
    NumberTextBuffer number;
    if (IsErrorCell(cells.first[at])) throw CXlErrorException(KnownErrorCode(cells.first[at].val.err));
    delimiters.Add(TextForm(cells.first[at], number));
  }
}

/// What is split of a cell that is no error, a view of it or of `number`.
inline XStringView SplitText(const XLOPER12& cell, NumberTextBuffer& number) {
  return IsTextCell(cell) ? TextOf(cell) : TextForm(cell, number);
}

/// Asks for the memory of a text that comes later.
inline void PrefetchAhead(const CXlCells& cells, std::int64_t at) {
  constexpr std::int64_t kTextsAhead = 24;
  if (at + kTextsAhead < cells.Count()) PrefetchText(cells.first[at + kTextsAhead]);
}

/// The most tokens that a text has; an error takes the place of one.
std::int64_t MostTokens(const CXlCells& cells, const Splitting& splitting) {
  std::size_t most = 0;
  for (std::int64_t at = 0; at < cells.Count(); ++at) {
    PrefetchAhead(cells, at);
    NumberTextBuffer number;
    const XLOPER12& cell = cells.first[at];
    const std::size_t tokens =
        IsErrorCell(cell) ? 1 : CountTokens(SplitText(cell, number), splitting.delimiters, splitting.empty);
    most = std::max(most, tokens);
  }
  return static_cast<std::int64_t>(most);
}

/// Where the tokens of a text go: cells `stride` cells apart.
struct TokenCells {
  XLOPER12* first;
  std::ptrdiff_t stride;
};

/// Writes the wanted tokens of a text, and empty texts behind the last. Whether the text has any token.
bool WriteTokens(CXlArrayBuilder& builder, const TokenCells& to, Tokens tokens, const WantedTokens& wanted,
                 const XLOPER12& emptyText) {
  std::int64_t at = -wanted.first;
  XLOPER12* cell = to.first;
  for (; at < wanted.count && tokens.Next(); ++at) {
    if (at < 0) continue;
    const XStringView token = tokens.Token();
    CopyUnits(builder.NewText(cell, token.size()), token.data(), token.size());
    cell += to.stride;
  }
  const bool hasAny = at > -wanted.first;
  for (at = std::max<std::int64_t>(at, 0); at < wanted.count; ++at, cell += to.stride) *cell = emptyText;
  return hasAny;
}

/// Splits each text of a column into a row, each of a row into a column. Never set when no text has a token.
CXlOper SplitTexts(const CXlCells& cells, const Splitting& splitting, const WantedTokens& wanted) {
  const bool downwards = cells.rows == 1 && cells.columns > 1;
  CXlArrayBuilder builder(downwards ? wanted.count : cells.rows, downwards ? cells.columns : wanted.count);
  XLOPER12 emptyText;
  builder.NewText(&emptyText, 0);
  bool hasAny = false;
  for (std::int64_t at = 0; at < cells.Count(); ++at) {
    PrefetchAhead(cells, at);
    const TokenCells to = downwards ? TokenCells{builder.At(0, at), cells.columns} : TokenCells{builder.Row(at), 1};
    NumberTextBuffer number;
    const XLOPER12& cell = cells.first[at];
    if (IsErrorCell(cell)) [[unlikely]] {
      builder.CopyCells(to.first, &cell, 1);
      builder.Repeat(to.first + to.stride, static_cast<std::size_t>(wanted.count - 1), to.stride, emptyText);
      hasAny = true;
      continue;
    }
    const Tokens tokens(SplitText(cell, number), splitting.delimiters, splitting.empty);
    hasAny |= WriteTokens(builder, to, tokens, wanted, emptyText);
  }
  return hasAny ? builder.FinishCollapsed() : CXlOper();
}

}  // namespace

void Functions::SplitText(CXlOper& result, const CXlArgument& text, const CXlArgument& delimiters,
                          const CXlScalarArgument<ElementKind::kInteger>& count,
                          const CXlScalarArgument<ElementKind::kBoolean>& compress) {
  result.SetError(xlerrValue);
  const CXlCells cells = text.Value().Cells();
  if (cells.rows > 1 && cells.columns > 1) return;
  Splitting splitting;
  AddDelimiters(splitting.delimiters, delimiters.Value().Cells());
  const std::int64_t number = count.Read();
  splitting.empty = compress.Read() ? EmptyTokens::kDropped : EmptyTokens::kKept;

  if (cells.Count() == 1 && IsErrorCell(*cells.first)) {
    result.SetError(KnownErrorCode(cells.first->val.err));
    return;
  }
  WantedTokens wanted{0, std::abs(number)};
  if (number > 0) wanted = {number - 1, 1};
  if (number == 0) wanted.count = MostTokens(cells, splitting);
  if (wanted.count == 0) return;
  CXlOper split = SplitTexts(cells, splitting, wanted);
  if (split.IsSet()) result = std::move(split);
}

}  // namespace quillmere::text
