#include "host/commands/exit_status.h"

#include <exception>
#include <iostream>

#include "host/process/checked_output.h"

namespace qcalc {

ExitStatus StatusOf(const std::function<ExitStatus()>& part) {
  try {
    return part();
  } catch (const OutputFailure& failure) {
    std::cerr << "the output could not be written: " << failure.reason << std::endl;
    return kLostOutput;
  } catch (const std::exception& error) {
    std::cerr << "qcalc itself failed: " << error.what() << std::endl;
    return kHostFailed;
  }
}

}  // namespace qcalc
