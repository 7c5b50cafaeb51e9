#include "frame/call/module_windows.h"

#include <windows.h>

namespace __gnu_cxx {
/// Returns the memory that the C++ runtime keeps for exceptions thrown when there is none; not in any public header.
void __freeres();
}  // namespace __gnu_cxx

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID);
extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE library, DWORD reason, LPVOID processEnds);
extern "C" BOOL WINAPI QuillmereEntry(HINSTANCE library, DWORD reason, LPVOID processEnds);

// Thread notifications stay on: the runtime releases its own per-thread memory by them.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) quillmere::InstallFaultHandling();
  if (reason == DLL_PROCESS_DETACH) {
    quillmere::RemoveFaultHandling();
    quillmere::ReleaseThreadRecords();
    __gnu_cxx::__freeres();
  }
  return TRUE;
}

// The runtime's entry point would destroy the static objects of the C++ library too, whose locks and heap blocks may be
// in the hands of threads that Windows has ended.
BOOL WINAPI QuillmereEntry(HINSTANCE library, DWORD reason, LPVOID processEnds) {
  return reason == DLL_PROCESS_DETACH && processEnds ? TRUE : DllMainCRTStartup(library, reason, processEnds);
}
