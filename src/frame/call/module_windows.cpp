#include "frame/call/module_windows.h"

#include <windows.h>

namespace __gnu_cxx {
/// Returns the memory that the C++ runtime keeps for exceptions thrown when there is none; not in any public header.
void __freeres();
}  // namespace __gnu_cxx

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds);

// Thread notifications stay on: the runtime releases its own per-thread memory by them.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) quillmere::InstallFaultHandling();
  if (reason == DLL_PROCESS_DETACH && !processEnds) {
    quillmere::RemoveFaultHandling();
    quillmere::ReleaseThreadRecords();
    __gnu_cxx::__freeres();
  }
  return TRUE;
}
