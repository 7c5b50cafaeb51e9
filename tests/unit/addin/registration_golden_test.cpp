// What Excel is told of each function, held against tests/golden/, a file a family: a change to a table or to the frame
// shows there what it does to Excel. `./dev golden` writes the files anew: it runs this test with
// QUILLMERE_WRITE_GOLDEN set. It needs the root of the project as its folder.
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
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

/// What each family's file is to hold, its functions in order of their names.
std::map<std::string, std::string> WhatIsRegistered() {
  AddinExcel excel;
  CXllComNull noObjectModel;
  CQuillmere4App app;
  app.SetCom(noObjectModel);
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  std::map<std::string, const CXllFunctionRecord*> functions;
  for (const CXllFunctionRecord* each = CXllFunctionRecord::Head(); each; each = each->Next())
    functions[Ascii(each->Declaration().name)] = each;
  std::map<std::string, std::string> record;
  for (const auto& [name, family] : Families()) {
    const FunctionDeclaration& declaration = functions.at(name)->Declaration();
    std::string& text = record.try_emplace(family, kHead).first->second;
    for (const std::vector<CXlOper>& call : excel.registerCalls)
      if (call[3].AsText() == declaration.name) text += "\n[" + name + "]\n" + Section(call, declaration);
  }
  return record;
}

/// Where two records part: the function, and what follows in each; "" where they do not.
std::string FirstDifference(const std::string& recorded, const std::string& registered) {
  const auto [was, is] = std::ranges::mismatch(recorded, registered);
  if (was == recorded.end() && is == registered.end()) return "";
  const std::size_t at = is - registered.begin(), function = std::min(registered.rfind("\n[", at), at);
  return registered.substr(function, at - function) + " <-- is\n" + registered.substr(at, 80) + "\nand was\n" +
         recorded.substr(at, 80);
}

TEST(RegistrationGolden, IsAsRecorded) {
  std::map<std::string, std::string> registered = WhatIsRegistered();
  const auto fileOf = [](const std::string& family) { return std::filesystem::path(kGolden) / (family + ".txt"); };
  if (std::getenv("QUILLMERE_WRITE_GOLDEN")) {
    std::filesystem::remove_all(kGolden);
    std::filesystem::create_directory(kGolden);
    for (const auto& [family, text] : registered) std::ofstream(fileOf(family), std::ios::binary) << text;
    return;
  }
  for (const auto& entry : std::filesystem::directory_iterator(kGolden)) registered[entry.path().stem().string()];
  for (const auto& [family, text] : registered) {
    std::stringstream recorded;
    recorded << std::ifstream(fileOf(family), std::ios::binary).rdbuf();
    if (const std::string difference = FirstDifference(recorded.str(), text); !difference.empty())
      ADD_FAILURE() << fileOf(family).generic_string() << ": " << difference
                    << "\nRun `./dev golden` and read what it changes in tests/golden/.";
  }
}

}  // namespace
}  // namespace quillmere::testing
