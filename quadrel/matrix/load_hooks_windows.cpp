// The load and unload hooks of a Windows DLL: its entry point DllMain, which
// the system calls on process and thread attach and detach.
#include <windows.h>

#include "quadrel/matrix/internal/load_hooks.h"

// A 0 on process attach makes LoadLibrary fail; thread attach and detach do
// nothing.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      if (FirstStartupHook() != 1) return FALSE;
      return LibraryEntry(LoadReason::kProcessAttach, instance);
    case DLL_PROCESS_DETACH:
      return LibraryEntry(LoadReason::kProcessDetach, nullptr);
    default:
      return TRUE;
  }
}
