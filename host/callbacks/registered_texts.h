// What Excel takes of the texts of a registration.
#pragma once

#include <string>

#include "xlcall/xchar.h"

namespace qcalc {

/// Why no function or command can be called by that name, in words that go on from "was given"; empty when one can.
std::string DefectOfName(XStringView name);

/// The same for a topic of help: `file!id`, a web address that ends in `!0`, or nothing.
std::string DefectOfHelpTopic(XStringView topic);

}  // namespace qcalc
