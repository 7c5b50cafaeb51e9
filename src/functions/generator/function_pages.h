// What the tables say of each function to its users, for programs that show it.
#pragma once

#include "functions/generator/generated_code.h"

namespace quillmere::generator {

/// functions.json: an object of
/// - `version`;
/// - `families`, an array with an object for each: `name`, `title`, `introduction`;
/// - `functions`, the same in the order of the tables: `name`, `family`, `type` ("function", "hidden", "command"),
/// `helpId`
///   (0: no topic), `description`, `page` (the long text), `example` and `result` (left out when there is none) with
///   `given` where the example needs something said before, `remarks`, `related` (names), and `arguments` in registered
///   order: of each `name`, `help` and, where it has them, `default` (as it is written in a formula), `required`,
///   `choices` (an array of `code` and `text`), `only` (no other codes are allowed), and in a run `round`, from 1, of
///   `rounds`.
GeneratedFile FunctionPages(const std::string& version, const std::vector<Family>& families);

}  // namespace quillmere::generator
