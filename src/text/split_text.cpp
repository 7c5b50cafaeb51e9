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
#include "text/prefetch_ahead.h"
#include "text/tokens.h"

namespace quillmere::text {
namespace {

/// How texts are split.
struct Splitting {
  DelimiterSet delimiters;
  EmptyTokens empty;
};

/// Which tokens of each text are wanted: the first ones up to `last`, counted from 1, or the last of these alone.
struct WantedTokens {
  std::int64_t last;
  bool lastAlone;

  std::int64_t Count() const noexcept { return lastAlone ? 1 : last; }
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

/// Writes the first tokens of a text, `last` at most, and returns how many it has. The text is copied once; the unit in
/// front of a token, a delimiter, then takes the token's length.
std::int64_t WriteFirstTokens(CXlArrayBuilder& builder, const TokenCells& to, XStringView text,
                              const Splitting& splitting, std::int64_t last) {
  XCHAR* const counted = builder.RoomForTexts(text.size() + 1);
  CopyUnits(counted + 1, text.data(), text.size());
  XLOPER12* cell = to.first;
  std::int64_t left = last;
  ForEachToken(text, splitting.delimiters, splitting.empty, [&](std::size_t begin, std::size_t end) {
    counted[begin] = static_cast<XCHAR>(end - begin);
    cell->val.str = counted + begin;
    cell->xltype = xltypeStr;
    cell += to.stride;
    return --left != 0;
  });
  return last - left;
}

/// Writes the token of that number, where the text has it, and returns how many it has up to that one.
std::int64_t WriteToken(CXlArrayBuilder& builder, XLOPER12* to, XStringView text, const Splitting& splitting,
                        std::int64_t number) {
  std::int64_t left = number;
  ForEachToken(text, splitting.delimiters, splitting.empty, [&](std::size_t begin, std::size_t end) {
    if (--left != 0) return true;
    CopyUnits(builder.NewText(to, end - begin), text.data() + begin, end - begin);
    return false;
  });
  return number - left;
}

/// Splits each text of a column into a row, each of a row into a column. Never set when no text has a token.
CXlOper SplitTexts(const CXlCells& cells, const Splitting& splitting, const WantedTokens& wanted) {
  const bool downwards = cells.rows == 1 && cells.columns > 1;
  const std::int64_t count = wanted.Count();
  CXlArrayBuilder builder(downwards ? count : cells.rows, downwards ? cells.columns : count);
  XLOPER12 emptyText;
  builder.NewText(&emptyText, 0);
  bool hasAny = false;
  TokenCells to{builder.Row(0), downwards ? cells.columns : 1};
  for (std::int64_t at = 0; at < cells.Count(); ++at, to.first += downwards ? 1 : count) {
    PrefetchAhead(cells, at);
    NumberTextBuffer number;
    const XLOPER12& cell = cells.first[at];
    std::int64_t written = 1;
    if (IsErrorCell(cell)) [[unlikely]] {
      builder.CopyCells(to.first, &cell, 1);
      hasAny = true;
    } else {
      const XStringView text = SplitText(cell, number);
      const std::int64_t found = wanted.lastAlone ? WriteToken(builder, to.first, text, splitting, wanted.last)
                                                  : WriteFirstTokens(builder, to, text, splitting, wanted.last);
      hasAny |= found != 0;
      written = wanted.lastAlone ? std::int64_t{found == wanted.last} : found;
    }
    for (XLOPER12* rest = to.first + written * to.stride; written < count; ++written, rest += to.stride)
      *rest = emptyText;
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
  const WantedTokens wanted{number == 0 ? MostTokens(cells, splitting) : std::abs(number), number > 0};
  if (wanted.last == 0) return;
  CXlOper split = SplitTexts(cells, splitting, wanted);
  if (split.IsSet()) result = std::move(split);
}

}  // namespace quillmere::text
