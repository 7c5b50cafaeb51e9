#include "host/xlsx/sheet_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "host/formulas/reference_text.h"
#include "host/text/digits.h"
#include "host/text/text_cursor.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"
#include "host/xlsx/cell_name.h"
#include "host/xlsx/cell_text.h"
#include "host/xlsx/iso_date.h"
#include "host/xml/xml_fault.h"
#include "host/xml/xml_text.h"

namespace qcalc {

namespace {

// What the store makes for each 1,024 rows of a column that hold anything.
constexpr std::size_t kBytesOfChunk = CellStore::kChunkRows * sizeof(CellView) + 64;
constexpr std::size_t kBytesOfHiddenRow = 48;
// Beside its text: as it is stored, and as the sheet will hold it.
constexpr std::size_t kBytesOfFormula = sizeof(StoredFormula) + 256;

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// A finite number, 0 for one that is too small for a double.
std::optional<double> ReadStoredNumber(std::string_view text) {
  double number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end != text.data() + text.size()) return std::nullopt;
  if (fault == std::errc::result_out_of_range && text.find("-", 1) != text.npos) return 0;
  return fault == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::string Shown(std::string_view written) { return "\"" + std::string(written.substr(0, 40)) + "\""; }

}  // namespace

// What a row's cells are told apart by; the text of an attribute is as it is written.
struct SheetReader::CellAttributes {
  std::string_view name, type, format, metadata;

  explicit CellAttributes(const XmlNode& cell) {
    for (const auto* attribute = cell.first_attribute(); attribute; attribute = attribute->next_attribute()) {
      const std::string_view key(attribute->name(), attribute->name_size());
      const std::string_view value(attribute->value(), attribute->value_size());
      if (key == "r") name = value;
      if (key == "t") type = value;
      if (key == "s") format = value;
      if (key == "cm") metadata = value;
    }
  }
};

std::optional<Area> AreaOfRef(std::string_view ref) {
  TextCursor cursor(ref);
  const auto area = TakeArea(cursor);
  return area && cursor.AtEnd() ? std::optional(area->area) : std::nullopt;
}

SheetReader::SheetReader(StoredSheet& stored, BookParts& parts, MemoryLimit& limit, Remarks& remarks)
    : stored_(stored), parts_(parts), limit_(limit), remarks_(remarks), cells_(stored.sheet->Cells()) {}

std::string SheetReader::Place() const {
  return QualifiedSheetName(stored_.sheet->Name()) + "!" + AreaToText(Area::OfCell(row_, std::max(column_, 0)));
}

void SheetReader::Refuse(const std::string& what) const { throw BookRefused(Place() + ": " + what); }

void SheetReader::Remark(const std::string& what) { remarks_.Add(Place() + ": " + what); }

void SheetReader::Read(const Package& package) {
  package.ReadPieces(stored_.part, "a worksheet", "sheetData", [this](ElementSplitter& splitter, XmlParser& parser) {
    ReadBeforeCells(splitter.Head());
    while (const auto piece = splitter.Next()) {
      const XmlNode& row = parser.Parse(piece->element);
      if (NameOf(row) == "row") ReadRow(row);
    }
    EndHidden(row_ + 1);
    ReadBehindCells(splitter.Tail());
  });
}

void SheetReader::ReadBeforeCells(std::string_view head) {
  ForEachMarkup(head, [&](const XmlMarkup& markup) {
    const std::string_view tag = markup.In(head);
    if (!markup.IsTag()) return;
    if (NameOfTag(tag) == "sheetFormatPr") hidesUnwritten_ = IsTrue(AttributeOfTag(tag, "zeroHeight"));
    if (NameOfTag(tag) != "col" || !IsTrue(AttributeOfTag(tag, "hidden"))) return;
    const auto first = ReadWhole<std::int32_t>(AttributeOfTag(tag, "min").value_or(""));
    const auto last = ReadWhole<std::int32_t>(AttributeOfTag(tag, "max").value_or(""));
    if (first && last && *first >= 1 && *last <= kXlMaxColumns) stored_.sheet->HideColumns(*first - 1, *last - 1, true);
  });
}

void SheetReader::ReadRow(const XmlNode& row) {
  const std::int32_t before = row_;
  const auto written = FindAttribute(row, "r");
  const auto number = written ? ReadWhole<std::int32_t>(*written) : std::optional(before + 2);
  if (!number || *number < 1 || *number > kXlMaxRows)
    throw XmlFault("it has a row " + Shown(written.value_or("behind the last one")) + ", which no sheet has");
  if (*number - 1 <= before)
    throw XmlFault("its row " + std::to_string(*number) + " stands behind row " + std::to_string(before + 1));
  row_ = *number - 1;
  column_ = -1;
  if (row_ > before + 1 && !hidesUnwritten_) EndHidden(before + 1);
  if (row_ > before + 1 && hidesUnwritten_ && firstHidden_ < 0) firstHidden_ = before + 1;
  if (!IsTrue(FindAttribute(row, "hidden")))
    EndHidden(row_);
  else if (firstHidden_ < 0)
    firstHidden_ = row_;
  try {
    ForEachChild(row, "c", [this](const XmlNode& cell) { ReadCell(cell); });
  } catch (const XmlFault& fault) {
    Refuse(fault.what());
  }
}

// Hides the run of hidden rows that goes up to there.
void SheetReader::EndHidden(std::int32_t end) {
  if (firstHidden_ >= 0) {
    limit_.Take(static_cast<std::size_t>(end - firstHidden_) * kBytesOfHiddenRow);
    stored_.sheet->HideRows(firstHidden_, end - 1, true);
  }
  firstHidden_ = -1;
}

void SheetReader::MoveTo(const CellAttributes& attributes) {
  std::int32_t row = row_, column = column_ + 1;
  if (!attributes.name.empty() && !ReadCellName(attributes.name, row, column))
    throw XmlFault("the next cell is " + Shown(attributes.name) + ", which no sheet has");
  if (row != row_) throw XmlFault("cell " + Shown(attributes.name) + " stands in another row");
  if (column >= kXlMaxColumns) throw XmlFault("the row has more cells than a sheet has columns");
  if (column <= column_) throw XmlFault("cell " + Shown(attributes.name) + " stands behind it");
  column_ = column;
}

void SheetReader::ReadCell(const XmlNode& cell) {
  const CellAttributes attributes(cell);
  MoveTo(attributes);
  if (!attributes.format.empty()) MarkDate(attributes);
  if (!cell.first_node()) return;
  if (const CellView value = ValueOf(cell, attributes); !value.IsEmpty()) Store(value);
  if (const XmlNode* formula = FindChild(cell, "f")) ReadFormula(*formula, attributes);
}

void SheetReader::MarkDate(const CellAttributes& attributes) {
  const auto format = ReadWhole<std::uint32_t>(attributes.format);
  // The format 0 is that of a book without styles.
  if (!format || (*format >= parts_.formats.size() && *format > 0))
    Refuse("cell format " + Shown(attributes.format) + ", of " + std::to_string(parts_.formats.size()));
  if (*format >= parts_.formats.size() || parts_.formats[*format] == DateKind::kNone) return;
  if (stored_.dates.Mark(row_, column_, parts_.formats[*format])) limit_.Take(DateCells::kBytesOfBlock);
}

void SheetReader::Store(const CellView& value) {
  const auto column = static_cast<std::size_t>(column_);
  const std::int32_t chunks = row_ / CellStore::kChunkRows + 1;
  if (column >= chunksOf_.size()) chunksOf_.resize(column + 1);
  if (std::int32_t& soFar = chunksOf_[column]; chunks > soFar) {
    limit_.Take(kBytesOfChunk + static_cast<std::size_t>(chunks - soFar) * sizeof(void*));
    soFar = chunks;
  }
  cells_.SetPooled(row_, column_, value);
}

CellView SheetReader::ValueOf(const XmlNode& cell, const CellAttributes& attributes) {
  if (attributes.type == "inlineStr") {
    const XmlNode* text = FindChild(cell, "is");
    if (!text) return {};
    const XStringView kept = KeepRichText(*text, cells_.Pool());
    limit_.Take(kept.size() * sizeof(XCHAR));
    return CellView::Text(kept);
  }
  const XmlNode* value = FindChild(cell, "v");
  return value ? ValueOf(*value, attributes.type) : CellView();
}

CellView SheetReader::ValueOf(const XmlNode& value, std::string_view type) {
  if (type == "str") {
    const XStringView kept = KeepCellText(value, cells_.Pool());
    limit_.Take(kept.size() * sizeof(XCHAR));
    return CellView::Text(kept);
  }
  const std::string_view written = Trimmed(PlainTextOf(value));
  if (written.empty()) return {};
  if (type.empty() || type == "n") {
    const auto number = ReadStoredNumber(written);
    if (!number) Refuse(Shown(written) + " is no number that a cell can hold");
    return CellView::Number(*number);
  }
  if (type == "s") return SharedText(written);
  if (type == "b") {
    if (written != "0" && written != "1" && written != "true" && written != "false")
      Refuse(Shown(written) + " is neither TRUE nor FALSE");
    return CellView::Boolean(written == "1" || written == "true");
  }
  if (type == "e") return ErrorOf(written);
  if (type == "d") {
    const auto date = ReadIsoDate(written, parts_.uses1904);
    if (!date) Refuse(Shown(written) + " is no date that a cell can hold");
    return CellView::Number(*date);
  }
  Refuse("its type " + Shown(type) + " is none that a cell can have");
}

CellView SheetReader::SharedText(std::string_view written) {
  const auto number = ReadWhole<std::uint32_t>(written);
  if (!number || *number >= parts_.texts.Size())
    Refuse("shared string " + std::string(written.substr(0, 40)) + ", of " + std::to_string(parts_.texts.Size()));
  return CellView::Text(parts_.texts.In(cells_.Pool(), *number));
}

CellView SheetReader::ErrorOf(std::string_view written) {
  if (const auto match = MatchErrorName(written); match && match->length == written.size())
    return CellView::Error(match->code);
  Remark("the error " + Shown(written) + " is taken for #VALUE!");
  return CellView::Error(xlerrValue);
}

void SheetReader::ReadFormula(const XmlNode& formula, const CellAttributes& attributes) {
  const std::string_view type = FindAttribute(formula, "t").value_or("normal");
  if (type == "dataTable") {
    Remark("a data table is not calculated; its values stay as they are");
    return;
  }
  StoredFormula stored{{row_, column_}, FormulaForm::kSingle, Area::OfCell(row_, column_)};
  stored.text = ToUtf8(TextOf(formula));
  if (type == "array")
    ReadArrayFormula(formula, attributes, stored);
  else if (type == "shared")
    ReadSharedFormula(formula, stored);
  else if (type != "normal")
    Refuse("its formula is of the type " + Shown(type) + ", which no formula has");
  // An array formula may leave its text out where it has been deleted.
  if (stored.text.empty() && !stored.master) return;
  limit_.Take(kBytesOfFormula + stored.text.size());
  stored_.formulas.push_back(std::move(stored));
}

void SheetReader::ReadArrayFormula(const XmlNode& formula, const CellAttributes& attributes, StoredFormula& stored) {
  const std::string_view ref = FindAttribute(formula, "ref").value_or(attributes.name);
  const auto area = AreaOfRef(ref);
  if (!area || area->firstRow != row_ || area->firstColumn != column_)
    Refuse("its array formula fills " + Shown(ref) + ", which does not begin here");
  // Its cells are to be filled one day.
  limit_.Take(static_cast<std::size_t>(area->Rows()) * static_cast<std::size_t>(area->Columns()) * sizeof(CellView));
  stored.fills = *area;
  stored.form = IsDynamic(attributes) ? FormulaForm::kSpilling : FormulaForm::kArray;
}

// One with a text is what those without one are copies of.
void SheetReader::ReadSharedFormula(const XmlNode& formula, StoredFormula& stored) {
  const auto number = ReadWhole<std::uint32_t>(FindAttribute(formula, "si").value_or(""));
  if (!number) Refuse("its shared formula has no number");
  if (!stored.text.empty()) {
    if (FindAttribute(formula, "ref")) shared_[*number] = stored_.formulas.size();
    return;
  }
  const auto found = shared_.find(*number);
  if (found == shared_.end()) Refuse("shared formula " + std::to_string(*number) + " has no text above this cell");
  stored.master = found->second;
}

bool SheetReader::IsDynamic(const CellAttributes& attributes) const {
  if (attributes.metadata.empty()) return false;
  const auto number = ReadWhole<std::uint32_t>(attributes.metadata);
  if (!number || *number > parts_.isDynamic.size())
    Refuse("cell metadata " + Shown(attributes.metadata) + ", of " + std::to_string(parts_.isDynamic.size()));
  return *number > 0 && parts_.isDynamic[*number - 1];
}

// Of what stands behind the cells, the filter matters: rows that it hides are told from those hidden by hand. Views of
// other people have filters of their own, deeper down.
void SheetReader::ReadBehindCells(std::string_view tail) {
  std::optional<Area> area;
  int depth = 0;  // below the sheet's cells, which end first
  ForEachMarkup(tail, [&](const XmlMarkup& markup) {
    const std::string_view tag = markup.In(tail);
    if (markup.kind == MarkupKind::kStart && ++depth == 0 && NameOfTag(tag) == "autoFilter")
      area = AreaOfRef(AttributeOfTag(tag, "ref").value_or(""));
    if (markup.kind == MarkupKind::kEnd && --depth < 0) area.reset();
    if (markup.IsTag() && NameOfTag(tag) == "filterColumn" && area)
      stored_.sheet->AddFilter(*std::exchange(area, std::nullopt));
  });
}

}  // namespace qcalc
