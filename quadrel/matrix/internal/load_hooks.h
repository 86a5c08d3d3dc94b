// Registration with the application framework when the library is loaded and
// unloaded. The calls and their order are the same on every platform; only
// what triggers them differs: an ELF constructor and destructor
// (load_hooks_elf.cpp) or DllMain (load_hooks_windows.cpp). Nothing in the
// numerics depends on any of this.
#ifndef QUADREL_MATRIX_LOAD_HOOKS_H
#define QUADREL_MATRIX_LOAD_HOOKS_H

enum class LoadReason { kProcessAttach, kProcessDetach };

// The framework's bookkeeping that runs first when the library is attached:
// the library's module record takes over the class and factory list heads of
// the module state that AfxGetModuleState gives, and both heads are emptied.
// Returns 1.
int FirstStartupHook();

// The library's entry point. On attach it initialises the module record with
// the library's instance handle and, when that succeeds, chains one
// CDynLinkLibrary (never deleted) into the framework; on detach it takes the
// record back. Returns 0 when attaching fails, else 1.
int LibraryEntry(LoadReason reason, void *instance);

#endif  // QUADREL_MATRIX_LOAD_HOOKS_H
