// Registration with the application framework when the library is loaded and
// unloaded. Nothing in the numerics depends on it.
#include <dlfcn.h>

#include "quadrel/platform/afx.h"

namespace {

enum class Reason { kProcessAttach, kProcessDetach };

// The library's own record in the framework.
AfxExtensionModule extensionModule;

// The framework's bookkeeping that runs first at start-up: the module's record
// takes over the two list heads of the module state and empties them.
int FirstStartupHook() {
  AfxModuleState *state = AfxGetModuleState();
  extensionModule.firstSharedClass = state->classListHead;
  extensionModule.firstSharedFactory = state->factoryListHead;
  state->classListHead = nullptr;
  state->factoryListHead = nullptr;
  return 1;
}

// The library's entry point. Returns 0 when loading fails, else 1.
int LibraryEntry(Reason reason, void *instance) {
  if (reason == Reason::kProcessAttach) {
    if (AfxInitExtensionModule(extensionModule, instance) == 0) return 0;
    // Registered for the life of the process; the library never deletes it.
    new CDynLinkLibrary(extensionModule);
    return 1;
  }
  AfxTermExtensionModule(extensionModule);
  return 1;
}

void *InstanceHandle() {
  Dl_info info;
  if (dladdr(reinterpret_cast<void *>(&FirstStartupHook), &info) != 0) return info.dli_fbase;
  return nullptr;
}

__attribute__((constructor)) void OnLoad() {
  if (FirstStartupHook() == 1) LibraryEntry(Reason::kProcessAttach, InstanceHandle());
}

__attribute__((destructor)) void OnUnload() { LibraryEntry(Reason::kProcessDetach, nullptr); }

}  // namespace
