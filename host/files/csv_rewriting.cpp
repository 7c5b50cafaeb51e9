#include "host/files/csv_rewriting.h"

#include "host/files/csv_reader.h"
#include "host/output/cell_text.h"

namespace qcalc {
namespace {

class CsvRewriter {
 public:
  CsvRewriter(ByteOutput& file, std::string_view text, const SheetResults& results)
      : file_(file), text_(text), sheet_(*results.sheet), changed_(results) {
    const std::size_t end = text.find_first_of("\r\n");
    if (end != std::string_view::npos && text[end] == '\r') lineEnd_ = text.substr(end, 2) == "\r\n" ? "\r\n" : "\r";
  }

  void Rewrite() {
    CsvReader reader(text_, ",");
    reader.Read(
        [&](std::int64_t record, std::int64_t index, std::string_view) {
          if (index == 0) BeginRecord(static_cast<std::int32_t>(record));
          if (columns_.Take(static_cast<std::int32_t>(index)))
            Replace(reader.Written(), static_cast<std::int32_t>(index));
        },
        [&](std::int64_t, std::int64_t fields) {
          CopyTo(reader.Written().data() + reader.Written().size());
          FillRecord(static_cast<std::int32_t>(fields));
          file_.Note();
        });
    CopyTo(text_.data() + text_.size());
    AddRecords();
  }

 private:
  void BeginRecord(std::int32_t record) {
    row_ = record;
    columns_ = ChangedColumns(changed_.OfRow(record));
  }

  void CopyTo(const char* end) {
    const auto to = static_cast<std::size_t>(end - text_.data());
    file_.Buffer() += text_.substr(copied_, to - copied_);
    copied_ = to;
  }

  void Replace(std::string_view written, std::int32_t column) {
    CopyTo(written.data());
    AppendCsvField(file_.Buffer(), sheet_.Get(row_, column));
    copied_ += written.size();
  }

  // Of a record with so many fields, what lies beyond them.
  void FillRecord(std::int32_t fields) {
    columns_.TakeBefore(kXlMaxColumns, [&](std::int32_t column) {
      const CellView& cell = sheet_.Get(row_, column);
      if (cell.IsEmpty()) return;
      file_.Buffer().append(static_cast<std::size_t>(column + 1 - fields), ',');
      AppendCsvField(file_.Buffer(), cell);
      fields = column + 1;
    });
  }

  // Of results that go on below the last record.
  void AddRecords() {
    const bool isEnded = text_.ends_with('\n') || text_.ends_with('\r');
    while (changed_.NextRow(row_ + 1) == row_ + 1) {
      BeginRecord(row_ + 1);
      if (!isEnded) file_.Buffer() += lineEnd_;
      FillRecord(1);
      if (isEnded) file_.Buffer() += lineEnd_;
      file_.Note();
    }
  }

  ByteOutput& file_;
  std::string_view text_;
  const Sheet& sheet_;
  ChangedCells changed_;
  ChangedColumns columns_{{}};
  std::string_view lineEnd_ = "\n";
  std::int32_t row_ = -1;
  std::size_t copied_ = 0;
};

}  // namespace

void RewriteCsv(ByteOutput& file, std::string_view text, const SheetResults& results) {
  CsvRewriter(file, text, results).Rewrite();
}

}  // namespace qcalc
