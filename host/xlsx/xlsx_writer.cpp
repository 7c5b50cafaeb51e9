#include "host/xlsx/xlsx_writer.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "host/formulas/reference_text.h"
#include "host/process/output_file.h"
#include "host/xlsx/row_rewriting.h"
#include "host/zip/zip_writer.h"

namespace qcalc {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 16;

bool IsAnyCalculated(const SheetResults& results) {
  return std::any_of(results.formulas.begin(), results.formulas.end(),
                     [](const FormulaResult& formula) { return formula.isCalculated; });
}

/// The sheet's text before its rows, with the area that it says it uses made to hold all results.
std::string HeadWithArea(std::string_view head, const SheetResults& results) {
  for (auto markup = FindMarkup(head, 0); markup; markup = FindMarkup(head, markup->end)) {
    const std::string_view tag = markup->In(head);
    if (!markup->IsTag() || NameOfTag(tag) != "dimension") continue;
    const auto written = AttributeOfTag(tag, "ref");
    const auto reference = ParseReference(written.value_or(""));
    if (!reference) break;
    Area area = reference->area;
    for (const FormulaResult& formula : results.formulas)
      if (formula.isCalculated) area = area.Around(formula.fillsNow);
    if (area == reference->area) break;
    std::string changed(head);
    return changed.replace(static_cast<std::size_t>(written->data() - head.data()), written->size(), AreaToText(area));
  }
  return std::string(head);
}

void RewriteSheet(ZipWriter& writer, ZipStream stream, const SheetResults& results) {
  ElementSplitter splitter([&](std::span<char> into) { return stream.Read(into); }, "sheetData");
  std::string out = HeadWithArea(splitter.Head(), results);
  RowRewriting rows(results, out);
  const auto write = [&] {
    writer.Write(out);
    out.clear();
  };
  while (const auto piece = splitter.Next()) {
    rows.AppendRow(out, piece->gap, piece->element);
    if (out.size() >= kBufferBytes) write();
  }
  rows.AppendRest(out);
  out += splitter.Tail();
  write();
}

void RewriteBook(ByteOutput& file, const std::filesystem::path& book, std::span<const CalculatedPart> parts) {
  const ZipReader reader(book);
  std::unordered_map<const ZipEntry*, const SheetResults*> changed;
  for (const CalculatedPart& calculated : parts)
    if (IsAnyCalculated(calculated.results)) changed[reader.Find(calculated.part)] = &calculated.results;
  ZipWriter writer(file);
  for (const ZipEntry& entry : reader.Entries()) {
    const auto results = changed.find(&entry);
    if (results == changed.end()) {
      writer.Copy(reader, entry);
      continue;
    }
    writer.Begin(entry);
    RewriteSheet(writer, reader.Open(entry), *results->second);
    writer.End();
  }
  writer.Finish();
}

}  // namespace

void RewriteXlsx(const std::filesystem::path& book, std::span<const CalculatedPart> parts,
                 const std::filesystem::path& out) {
  OutputFile file(out);
  // The book is closed again before what was written takes its place.
  RewriteBook(file, book, parts);
  file.Finish();
}

}  // namespace qcalc
