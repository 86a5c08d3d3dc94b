// The load and unload steps that every platform's hooks share.
#include "quadrel/matrix/internal/load_hooks.h"

#include "quadrel/platform/afx.h"

namespace {

// The library's own record in the framework.
AfxExtensionModule extensionModule;

}  // namespace

int FirstStartupHook() {
  AfxModuleState *state = AfxGetModuleState();
  extensionModule.firstSharedClass = state->classListHead;
  extensionModule.firstSharedFactory = state->factoryListHead;
  state->classListHead = nullptr;
  state->factoryListHead = nullptr;
  return 1;
}

int LibraryEntry(LoadReason reason, void *instance) {
  if (reason == LoadReason::kProcessAttach) {
    if (AfxInitExtensionModule(extensionModule, instance) == 0) return 0;
    // Registered for the life of the process; the library never deletes it.
    new CDynLinkLibrary(extensionModule);
    return 1;
  }
  AfxTermExtensionModule(extensionModule);
  return 1;
}
