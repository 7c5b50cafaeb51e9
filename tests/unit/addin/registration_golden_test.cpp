// What Excel is told of each function, held against tests/golden/registration.txt: a change to a table or to the frame
// shows there what it does to Excel. From the root of the project,
//
//   QUILLMERE_WRITE_GOLDEN=1 build/native/bin/unit_tests --gtest_filter=RegistrationGolden.*
//
// writes the file anew.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "addin/quillmere4_app.h"
#include "frame/registration/descriptor.h"
#include "frame/registration/type_text.h"
#include "tests/unit/fixtures/addin_excel.h"

namespace quillmere::testing {
namespace {

constexpr const char* kGolden = "tests/golden/registration.txt";

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

/// Functions that other tests of this program declare.
bool IsOfATest(const FunctionDeclaration& declaration) { return declaration.procedure.starts_with("TEST_"); }

void Write(std::ostream& out, const std::vector<CXlOper>& call, const FunctionDeclaration& declaration) {
  out << "\n[" << Ascii(declaration.name) << "]\n";
  for (std::size_t i = 0; i < call.size(); ++i) {
    out << (i < std::size(kArgumentNames) ? kArgumentNames[i] : "argument help " + std::to_string(i - 9)) << ":"
        << Shown(call[i]) << "\n";
  }
  if (declaration.interfaces == 3) out << "8-bit type text: " << TypeText4(declaration) << "\n";
  out << "descriptor: " << Ascii(WriteDescriptor(declaration)) << "\n";
}

std::string WhatIsRegistered() {
  AddinExcel excel;
  CQuillmere4App app;
  EXPECT_EQ(CXllApp::AutoOpen(), 1);
  std::ostringstream out;
  out << "What Excel is told of each function: the arguments of xlfRegister in order, and the descriptor. How this "
         "file\n"
         "is written anew stands in tests/unit/addin/registration_golden_test.cpp.\n";
  for (const CXllFunctionRecord* record = CXllFunctionRecord::Head(); record; record = record->Next()) {
    const FunctionDeclaration& declaration = record->Declaration();
    if (IsOfATest(declaration)) continue;
    for (const std::vector<CXlOper>& call : excel.registerCalls) {
      if (call[3].AsText() == declaration.name) Write(out, call, declaration);
    }
  }
  return out.str();
}

TEST(RegistrationGolden, IsAsRecorded) {
  const std::string registered = WhatIsRegistered();
  if (std::getenv("QUILLMERE_WRITE_GOLDEN")) {
    std::ofstream(kGolden, std::ios::binary) << registered;
    return;
  }
  std::ifstream file(kGolden, std::ios::binary);
  ASSERT_TRUE(file) << kGolden << " cannot be read from this folder";
  std::istringstream now(registered);
  std::string recordedLine;
  std::string line;
  for (int number = 1; std::getline(now, line); ++number) {
    ASSERT_TRUE(std::getline(file, recordedLine)) << kGolden << " ends before: " << line;
    ASSERT_EQ(line, recordedLine) << kGolden << ":" << number;
  }
  ASSERT_FALSE(std::getline(file, recordedLine)) << "no longer registered: " << recordedLine;
}

}  // namespace
}  // namespace quillmere::testing
