// Writes a sample workbook from its description, without the values of its formulas:
//     sample_writer --functions FOLDER --data FOLDER BOOK.toml OUT.xlsx
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "functions/generator/table_reader.h"
#include "host/files/file_text.h"
#include "samples/writer/sample_book.h"

namespace {

using namespace samples;

std::string TextOf(const std::filesystem::path& path) {
  auto read = qcalc::ReadFile(path);
  if (const auto* failure = std::get_if<qcalc::FileFailure>(&read))
    throw std::runtime_error(path.string() + ": " + failure->reason);
  return std::get<std::string>(std::move(read));
}

/// The names of the add-in's functions, as the tables in the folder declare them.
std::set<std::string> DeclaredFunctions(const std::string& folder, Diagnostics& diagnostics) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".toml") continue;
    const auto family = quillmere::generator::ReadFamily(entry.path().string(), TextOf(entry.path()), diagnostics);
    for (const auto& function : family.functions) names.insert(function.name);
  }
  return names;
}

}  // namespace

int main(int count, char** words) {
  CLI::App app("Writes a sample workbook from its description.");
  std::string functions, data, description, out;
  app.add_option("--functions", functions, "folder of the tables of functions")->required();
  app.add_option("--data", data, "folder of the data")->required();
  app.add_option("description", description, "what the workbook holds")->required();
  app.add_option("out", out, "the workbook")->required();
  CLI11_PARSE(app, count, words);
  try {
    Diagnostics diagnostics;
    const auto names = DeclaredFunctions(functions, diagnostics);
    const Book book = ReadBook(description, TextOf(description), names, diagnostics);
    if (diagnostics.All().empty()) WriteBook(book, data, out, diagnostics);
    std::cerr << diagnostics.Text();
    return diagnostics.All().empty() ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "sample_writer: " << error.what() << "\n";
    return 2;
  }
}
