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

/// The most tokens that a text has, of those from one place to another; an error takes the place of one.
std::int64_t MostTokens(const CXlCells& cells, std::int64_t from, std::int64_t end, const Splitting& splitting) {
  std::size_t most = 0;
  for (std::int64_t at = from; at < end; ++at) {
    PrefetchAhead(cells, at);
    NumberTextBuffer number;
    const XLOPER12& cell = cells.first[at];
    const std::size_t tokens =
        IsErrorCell(cell) ? 1 : CountTokens(SplitText(cell, number), splitting.delimiters, splitting.empty);
    most = std::max(most, tokens);
  }
  return static_cast<std::int64_t>(most);
}

/// Where the tokens of a text go: so many cells, `stride` cells apart.
struct TokenCells {
  XLOPER12* first;
  std::ptrdiff_t stride;
  std::int64_t count;
};

/// Writes the first tokens of a text, and returns how many it has, or one more than there are cells for. The text is
/// copied once; the unit in front of a token, a delimiter, then takes the token's length.
std::int64_t WriteTokens(CXlArrayBuilder& builder, const TokenCells& to, XStringView text, const Splitting& splitting) {
  XCHAR* const counted = builder.RoomForTexts(text.size() + 1);
  CopyUnits(counted + 1, text.data(), text.size());
  XLOPER12* cell = to.first;
  std::int64_t found = 0;
  ForEachToken(text, splitting.delimiters, splitting.empty, [&](std::size_t begin, std::size_t end) {
    if (++found > to.count) return false;
    counted[begin] = static_cast<XCHAR>(end - begin);
    cell->val.str = counted + begin;
    cell->xltype = xltypeStr;
    cell += to.stride;
    return true;
  });
  return found;
}

/// Writes the token of that number, where the text has it. Whether it has any.
bool WriteToken(CXlArrayBuilder& builder, XLOPER12* to, XStringView text, const Splitting& splitting,
                std::int64_t number) {
  std::int64_t left = number;
  ForEachToken(text, splitting.delimiters, splitting.empty, [&](std::size_t begin, std::size_t end) {
    if (--left != 0) return true;
    CopyUnits(builder.NewText(to, end - begin), text.data() + begin, end - begin);
    return false;
  });
  return left != number;
}

/// The tokens of each text of a column in a row, of each text of a row in a column.
class TokenArray {
 public:
  /// Room for `width` tokens of each text.
  TokenArray(const CXlCells& cells, std::int64_t width)
      : cells_(cells),
        downwards_(cells.rows == 1 && cells.columns > 1),
        builder_(downwards_ ? width : cells.rows, downwards_ ? cells.columns : width),
        width_(width) {
    builder_.NewText(&emptyText_, 0);
  }

  /// Writes the first tokens of the texts. Returns the place of the first text that has more than there is room for,
  /// unless the room is all that is wanted; else how many texts there are.
  std::int64_t WriteFirst(const Splitting& splitting, bool isRoomWanted) {
    return ForEachText([&](const TokenCells& to, XStringView text) {
      const std::int64_t found = WriteTokens(builder_, to, text, splitting);
      hasAny_ |= found != 0;
      return isRoomWanted ? std::min(found, to.count) : found;
    });
  }
  /// Writes one token of each text, in an array of that width.
  void WriteOne(const Splitting& splitting, std::int64_t number) {
    ForEachText([&](const TokenCells& to, XStringView text) {
      *to.first = emptyText_;
      hasAny_ |= WriteToken(builder_, to.first, text, splitting, number);
      return to.count;
    });
  }

  /// The array; #VALUE! when no text has a token.
  CXlOper Finish() { return hasAny_ ? builder_.FinishCollapsed() : CXlOper::Error(xlerrValue); }

 private:
  /// Goes through the texts until `write` has written more tokens of one than there are cells for.
  template <class Write>
  std::int64_t ForEachText(const Write& write) {
    TokenCells to{builder_.Row(0), downwards_ ? cells_.columns : 1, width_};
    std::int64_t at = 0;
    for (; at < cells_.Count(); ++at, to.first += downwards_ ? 1 : width_) {
      PrefetchAhead(cells_, at);
      NumberTextBuffer number;
      const XLOPER12& cell = cells_.first[at];
      const bool isError = IsErrorCell(cell);
      std::int64_t written = 1;
      if (!isError) [[likely]]
        written = write(to, SplitText(cell, number));
      else
        PutError(to.first, cell);
      if (written > width_) break;
      for (XLOPER12* rest = to.first + written * to.stride; written < width_; ++written, rest += to.stride)
        *rest = emptyText_;
    }
    return at;
  }

  /// An error stands where the first token would.
  void PutError(XLOPER12* to, const XLOPER12& error) {
    builder_.CopyCells(to, &error, 1);
    hasAny_ = true;
  }

  const CXlCells& cells_;
  bool downwards_;
  CXlArrayBuilder builder_;
  std::int64_t width_;
  XLOPER12 emptyText_;
  bool hasAny_ = false;
};

/// All tokens of the texts. What the first ones have is mostly what all have, so that the others are not counted before
/// one has more.
CXlOper SplitInFull(const CXlCells& cells, const Splitting& splitting) {
  constexpr std::int64_t kTextsCounted = 128;
  const std::int64_t count = cells.Count();
  std::int64_t width = std::max<std::int64_t>(1, MostTokens(cells, 0, std::min(count, kTextsCounted), splitting));
  for (;;) {
    TokenArray tokens(cells, width);
    const std::int64_t split = tokens.WriteFirst(splitting, false);
    if (split == count) return tokens.Finish();
    width = MostTokens(cells, split, count, splitting);
  }
}

CXlOper SplitTexts(const CXlCells& cells, const Splitting& splitting, std::int64_t number) {
  if (number == 0) return SplitInFull(cells, splitting);
  TokenArray tokens(cells, number > 0 ? 1 : -number);
  if (number > 0)
    tokens.WriteOne(splitting, number);
  else
    tokens.WriteFirst(splitting, true);
  return tokens.Finish();
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
  result = SplitTexts(cells, splitting, number);
}

}  // namespace quillmere::text
