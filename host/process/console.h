// The program's arguments and streams: UTF-8 and lines that end in LF, on every build.
#pragma once

#include <string>
#include <vector>

namespace qcalc {

/// The command line's arguments in UTF-8, without the program's own name.
std::vector<std::string> ProgramArguments(int count, char** arguments);

/// Makes the standard streams carry bytes as they are written, and a reader that has gone an error of the write.
void PrepareStreams();

/// Whether standard error is a terminal, before which somebody may sit.
bool ErrorsGoToTerminal();

}  // namespace qcalc
