// The lookup memory: the row that the last successful lookup of a calling place found, to be tried first by the next.
#pragma once

#include <cstdint>
#include <optional>

#include "frame/values/xl_oper.h"
#include "xlcall/xchar.h"

namespace quillmere::lookup {

/// How a calling place is identified.
enum class MemoryType : std::int8_t {
  kNone = 0,
  kCell = 1,       ///< workbook, sheet and cell
  kRowColumn = 2,  ///< workbook, sheet and row (column, for lists that run across)
  kNumber = 3,     ///< the row (column) number alone, shared by all sheets and workbooks
  kNamed = 4,      ///< workbook, row (column) and a name
};

struct MemoryChoice {
  MemoryType type;
  XString name;  ///< of kNamed
};

/// Reads MemType_Name: a number gives its type (cut to a whole one, 0 to 3), an empty text kRowColumn, any other text a
/// named memory; nothing for all else. An array of one cell counts as that cell.
std::optional<MemoryChoice> ReadMemoryChoice(const CXlOper& memTypeName);

/// Whether a list runs down its rows or across its columns: which number of the calling place identifies it.
enum class ListDirection { kDown, kAcross };

/// The memory of one call. Which places call is asked of Excel on first use, once; so is the name of their sheet, where
/// the type needs it. What is found never depends on it: a failure in it, such as no memory for an entry or a lock that
/// was waited for in vain, ends its use for the rest of the call.
class LookupMemory {
 public:
  explicit LookupMemory(MemoryChoice choice, ListDirection direction = ListDirection::kDown);

  /// Whether the memory is in use at all: its type is not kNone, and nothing in it has failed.
  bool IsInUse() const noexcept { return choice_.type != MemoryType::kNone; }

  /// For functions that are nothing without a calling cell: asks now what there is to ask. CXlErrorException with
  /// #VALUE! when the formula stands in no cells of a worksheet, whatever the memory's type, or when a callback fails.
  void RequireCallingCells();

  /// The position remembered for the calling place of a key row (0-based): in a formula entered over several rows
  /// (columns) that of the calling range's like row, else that of its one row. Positions count from 1, but any number
  /// may have been put into the stores by others. Nothing when none is remembered, the memory is not in use, the
  /// caller is no cell, or the calling range ends above the key row.
  std::optional<std::int32_t> Recall(std::int32_t keyRow);
  /// Remembers a position (1-based) where Recall would look for it; given up silently when the stores stay locked for
  /// 100 ms.
  void Remember(std::int32_t keyRow, std::int32_t position);

 private:
  bool UsesTextStore() const noexcept;
  void AskCaller();
  std::optional<XLREF12> PlaceOf(std::int32_t keyRow);
  std::optional<std::int32_t> Find(std::int32_t keyRow);
  bool Store(std::int32_t keyRow, std::int32_t position);
  /// The key of a place in the text store, a view of `key_`; nothing where no key can be made.
  std::optional<XStringView> TextKey(const XLREF12& place);
  void PrepareTextKeys();
  void AppendAddress(const XLREF12& place);

  MemoryChoice choice_;
  ListDirection direction_;
  bool callerIsKnown_ = false;
  bool textKeysAreReady_ = false;
  CXlOper caller_;     ///< never set where it is no cell
  CXlOper sheetName_;  ///< asked for where the caller is a cell and the text store is used
  XString head_;       ///< of every text key, before the address
  XString tail_;       ///< and after it
  XString key_;        ///< the buffer of all text keys
};

}  // namespace quillmere::lookup
