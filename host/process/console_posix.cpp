#include <signal.h>
#include <unistd.h>

#include "host/process/console.h"

namespace qcalc {

std::vector<std::string> ProgramArguments(int count, char** arguments) { return {arguments + 1, arguments + count}; }

void PrepareStreams() { signal(SIGPIPE, SIG_IGN); }

bool ErrorsGoToTerminal() { return isatty(STDERR_FILENO) == 1; }

}  // namespace qcalc
