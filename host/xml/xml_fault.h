// What is wrong with a text in XML.
#pragma once

#include <stdexcept>

namespace qcalc {

/// Why a text in XML cannot be read, as words that may follow its name.
class XmlFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qcalc
