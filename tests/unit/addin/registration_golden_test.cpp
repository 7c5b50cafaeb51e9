// What Excel is told of each function, held against tests/golden/, a file a family: a change to a table or to the frame
// shows there what it does to Excel. `./dev golden` writes the files anew: it runs this test with
// QUILLMERE_WRITE_GOLDEN set. It needs the root of the project as its folder.
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "addin/quillmere4_app.h"
#include "frame/registration/descriptor.h"
#include "frame/registration/type_text.h"
#include "tests/unit/fixtures/addin_excel.h"

namespace quillmere::testing {
namespace {

constexpr const char* kGolden = "tests/golden";
constexpr const char* kTables = "src/functions";
constexpr const char* kHead =
    "What Excel is told of each function: the arguments of xlfRegister in order, and the descriptor. Written by `./dev "
    "golden`.\n";

constexpr const char* kArgumentNames[] = {"module",     "procedure", "type text", "name",       "argument text",
                                          "macro type", "category",  "shortcut",  "help topic", "help"};

/// ASCII, with what lies beyond as \uXXXX.
std::string Ascii(XStringView text) {
  std::string ascii;
  for (XCHAR unit : text) {
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, unit < 0x80 ? "%c" : "\\u%04X", static_cast<unsigned>(unit));
    ascii += escaped;
  }
  return ascii;
}

/// With the blank that parts it from its name, if there is anything to show.
std::string Shown(const CXlOper& argument) {
  if (!argument.IsText()) return " " + std::to_string(static_cast<int>(argument.AsNumber()));
  return argument.AsText().empty() ? "" : " " + Ascii(argument.AsText());
}

/// What Excel is told of one function, line by line.
std::string Section(const std::vector<CXlOper>& call, const FunctionDeclaration& declaration) {
  std::ostringstream out;
  for (std::size_t i = 0; i < call.size(); ++i) {
    out << (i < std::size(kArgumentNames) ? kArgumentNames[i] : "argument help " + std::to_string(i - 9)) << ":"
        << Shown(call[i]) << "\n";
  }
  if (declaration.interfaces == 3) out << "8-bit type text: " << TypeText4(declaration) << "\n";
  out << "descriptor: " << Ascii(WriteDescriptor(declaration)) << "\n";
  return out.str();
}

/// By function.
using Sections = std::map<std::string, std::string>;
/// By family, whose file they stand in.
using Record = std::map<std::string, Sections>;

/// The family that each function is declared in.
std::map<std::string, std::string> Families() {
  std::map<std::string, std::string> families;
  for (const auto& entry : std::filesystem::directory_iterator(kTables)) {
    if (entry.path().extension() != ".toml") continue;
    const toml::table table = toml::parse_file(entry.path().string());
    for (const toml::node& function : *table["function"].as_array())
      families[*(*function.as_table())["name"].value<std::string>()] = entry.path().stem().string();
  }
  return families;
}

Record WhatIsRegistered() {
  AddinExcel excel;
  CQuillmere4App app;
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  const std::map<std::string, std::string> families = Families();
  Record record;
  for (const CXllFunctionRecord* each = CXllFunctionRecord::Head(); each; each = each->Next()) {
    const FunctionDeclaration& declaration = each->Declaration();
    const auto family = families.find(Ascii(declaration.name));
    // Functions that other tests of this program declare stand in no table.
    if (family == families.end()) continue;
    for (const std::vector<CXlOper>& call : excel.registerCalls) {
      if (call[3].AsText() == declaration.name) record[family->second][family->first] = Section(call, declaration);
    }
  }
  return record;
}

std::filesystem::path FileOf(const std::string& family) { return std::filesystem::path(kGolden) / (family + ".txt"); }

void Write(const Record& record) {
  std::filesystem::remove_all(kGolden);
  std::filesystem::create_directory(kGolden);
  for (const auto& [family, sections] : record) {
    std::ofstream file(FileOf(family), std::ios::binary);
    file << kHead;
    for (const auto& [name, section] : sections) file << "\n[" << name << "]\n" << section;
  }
}

Sections Read(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  Sections sections;
  std::string* section = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[') && line.ends_with(']'))
      section = &sections[line.substr(1, line.size() - 2)];
    else if (section && !line.empty())
      *section += line + "\n";
  }
  return sections;
}

/// The first lines that differ; "" where there is none.
std::string FirstDifference(const std::string& recorded, const std::string& registered) {
  std::istringstream before(recorded), now(registered);
  for (;;) {
    std::string lineBefore, lineNow;
    std::getline(before, lineBefore);
    std::getline(now, lineNow);
    if (lineBefore != lineNow) return "\n  recorded   " + lineBefore + "\n  registered " + lineNow;
    if (!before && !now) return "";
  }
}

TEST(RegistrationGolden, IsAsRecorded) {
  Record registered = WhatIsRegistered();
  if (std::getenv("QUILLMERE_WRITE_GOLDEN")) {
    Write(registered);
    return;
  }
  constexpr const char* kAdvice = "\nRun `./dev golden` and read what it changes in tests/golden/.";
  std::set<std::string> families;
  for (const auto& [family, sections] : registered) families.insert(family);
  for (const auto& entry : std::filesystem::directory_iterator(kGolden)) families.insert(entry.path().stem().string());
  for (const std::string& family : families) {
    const std::string path = FileOf(family).generic_string();
    if (!registered.contains(family)) ADD_FAILURE() << path << " is of no family." << kAdvice;
    if (!std::filesystem::exists(path)) {
      ADD_FAILURE() << path << " is missing." << kAdvice;
      continue;
    }
    Sections recorded = Read(path);
    Sections& now = registered[family];
    Sections all = recorded;
    all.insert(now.begin(), now.end());
    for (const auto& [name, section] : all) {
      const std::string difference = FirstDifference(recorded[name], now[name]);
      if (!difference.empty()) ADD_FAILURE() << name << " is not what " << path << " says:" << difference << kAdvice;
    }
  }
}

}  // namespace
}  // namespace quillmere::testing
