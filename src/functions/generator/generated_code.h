// The files that derive from the tables: only what differs in shape from one function to the next. What follows from a
// declaration by a rule (type text, argument text, descriptor) is ordinary code of the frame.
#pragma once

#include <string>
#include <vector>

#include "functions/generator/function_table.h"

namespace quillmere::generator {

struct GeneratedFile {
  std::string name;  ///< relative to the output folder
  std::string text;
};

/// From tables without mistakes: implementations/FAMILY.h for each family, records.cpp, exports.cpp and examples.calc.
std::vector<GeneratedFile> GenerateCode(const std::vector<Family>& families);

}  // namespace quillmere::generator
