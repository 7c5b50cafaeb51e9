// Doing what may fail without harm.
#pragma once

#include <exception>

namespace quillmere {

/// Runs a step that nothing depends on; false when it failed. What is no failure passes: Excel's wish that the function
/// return.
template <class Step>
bool Attempt(const Step& step) {
  try {
    step();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace quillmere
