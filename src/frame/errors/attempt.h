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

/// Runs a step; false when it failed by that exception, which the caller has an answer to. Any other passes.
template <class Failure, class Step>
bool RunsWithout(const Step& step) {
  try {
    step();
    return true;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace quillmere
