// What the tables say of each function to its users, for programs that show it.
#pragma once

#include "functions/generator/generated_code.h"

namespace quillmere::generator {

/// functions.json: an array with an object for each function. `name`, `family`, `page` (the long text), `example` and
/// `result` (left out when there is none) with `given` where the example needs something said before, and `arguments`
/// in registered order: of each `name` and, where it has them, `default` (as it is written in a formula), `required`,
/// `choices` (an array of `code` and `text`) and `only` (no other codes are allowed).
GeneratedFile FunctionPages(const std::vector<Family>& families);

}  // namespace quillmere::generator
