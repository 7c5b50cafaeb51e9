// What is wrong with a zip file.
#pragma once

#include <stdexcept>

namespace qcalc {

/// Why a zip file or an entry of it cannot be read or written, as words that may follow the file's name.
class ZipFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qcalc
