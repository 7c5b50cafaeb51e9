// Turns the tables of functions into the add-in's records, exports and declarations of implementations.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "functions/generator/function_pages.h"
#include "functions/generator/generated_code.h"
#include "functions/generator/table_checks.h"
#include "functions/generator/table_reader.h"

namespace {

using namespace quillmere::generator;

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path.string() + ": cannot be read");
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Leaves a file alone that holds the text already, so that nothing is compiled anew for it.
void WriteFile(const std::filesystem::path& path, const std::string& text) {
  if (std::filesystem::exists(path) && ReadFile(path) == text) return;
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error(path.string() + ": cannot be written");
}

int Generate(const std::string& folder, const std::string& version, const std::vector<std::string>& paths) {
  Diagnostics diagnostics;
  std::vector<Family> families;
  for (const std::string& path : paths) families.push_back(ReadFamily(path, ReadFile(path), diagnostics));
  if (diagnostics.All().empty()) CheckTables(families, diagnostics);
  std::cerr << diagnostics.Text();
  if (!diagnostics.All().empty()) return 1;
  std::vector<GeneratedFile> files = GenerateCode(families);
  files.push_back(FunctionPages(version, families));
  for (const GeneratedFile& file : files) WriteFile(std::filesystem::path(folder) / file.name, file.text);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Turns the tables of functions into records, exports and declarations of implementations.");
  std::string folder, version;
  std::vector<std::string> paths;
  app.add_option("--out", folder, "folder to write to")->required();
  app.add_option("--version", version, "the add-in's, for the functions' pages")->required();
  app.add_option("tables", paths, "one TOML file a family")->required();
  CLI11_PARSE(app, argc, argv);
  try {
    return Generate(folder, version, paths);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
