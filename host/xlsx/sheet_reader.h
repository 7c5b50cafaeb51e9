// One worksheet of a workbook file into a sheet.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/xlsx/memory_limit.h"
#include "host/xlsx/remarks.h"
#include "host/xlsx/shared_texts.h"
#include "host/xlsx/stored_book.h"

namespace qcalc {

/// What the sheets of a book refer to.
struct BookParts {
  SharedTexts texts;
  std::vector<DateKind> formats;
  std::vector<bool> isDynamic;  ///< of the cell metadata
  bool uses1904 = false;
};

/// Reads the part of one sheet. Cells and rows must come in order and each once, as Excel wants them.
class SheetReader {
 public:
  /// `stored` names the sheet and its part, and receives the rest. All outlive the reader.
  SheetReader(StoredSheet& stored, BookParts& parts, MemoryLimit& limit, Remarks& remarks);

  /// Throws BookRefused.
  void Read(const Package& package);

 private:
  struct CellAttributes;

  void ReadBeforeCells(std::string_view head);
  void ReadRow(const XmlNode& row);
  void EndHidden(std::int32_t end);
  void ReadCell(const XmlNode& cell);
  void MoveTo(const CellAttributes& attributes);
  void MarkDate(const CellAttributes& attributes);
  CellView ValueOf(const XmlNode& cell, const CellAttributes& attributes);
  CellView ValueOf(const XmlNode& value, std::string_view type);
  CellView SharedText(std::string_view written);
  CellView ErrorOf(std::string_view written);
  void Store(const CellView& value);
  void ReadFormula(const XmlNode& formula, const CellAttributes& attributes);
  void ReadArrayFormula(const XmlNode& formula, const CellAttributes& attributes, StoredFormula& stored);
  void ReadSharedFormula(const XmlNode& formula, StoredFormula& stored);
  bool IsDynamic(const CellAttributes& attributes) const;
  void ReadBehindCells(std::string_view tail);

  [[noreturn]] void Refuse(const std::string& what) const;
  void Remark(const std::string& what);
  /// `Data!B7`, of the cell in work.
  std::string Place() const;

  StoredSheet& stored_;
  BookParts& parts_;
  MemoryLimit& limit_;
  Remarks& remarks_;
  CellStore& cells_;
  std::int32_t row_ = -1;
  std::int32_t column_ = -1;
  std::int32_t firstHidden_ = -1;       // of a run of hidden rows that goes on; -1 outside of one
  bool hidesUnwritten_ = false;         // rows that the part does not mention are hidden
  std::vector<std::int32_t> chunksOf_;  // of each column's cells, which are made 1,024 at once: how many so far
  std::unordered_map<std::uint32_t, std::size_t> shared_;  // the place of the formula that others are copies of
};

/// The area that `A1` or `A1:B2` names; nothing for anything else.
std::optional<Area> AreaOfRef(std::string_view ref);

}  // namespace qcalc
