// clang-format off
#include <windows.h>  // before all that need its types
// clang-format on
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <stdio.h>

#include "host/process/console.h"
#include "host/text/utf8.h"

namespace qcalc {

// The narrow arguments have been through the system's code page already, so they are read anew.
std::vector<std::string> ProgramArguments(int, char**) {
  int count = 0;
  LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> all;
  for (int i = 1; i < count; ++i) all.push_back(ToUtf8(arguments[i]));
  LocalFree(arguments);
  return all;
}

void PrepareStreams() {
  for (FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

bool ErrorsGoToTerminal() { return _isatty(_fileno(stderr)) != 0; }

}  // namespace qcalc
