#include "host/console.h"

namespace qcalc {

std::vector<std::string> ProgramArguments(int count, char** arguments) { return {arguments + 1, arguments + count}; }

void PrepareStreams() {}

}  // namespace qcalc
