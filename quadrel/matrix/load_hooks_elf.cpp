// The load and unload hooks of an ELF shared object: a constructor and a
// destructor that the dynamic loader runs when it maps and unmaps the library.
#include <dlfcn.h>

#include "quadrel/matrix/internal/load_hooks.h"

namespace {

// The library's instance handle: the base address at which it is mapped.
void *InstanceHandle() {
  Dl_info info;
  if (dladdr(reinterpret_cast<void *>(&FirstStartupHook), &info) != 0) return info.dli_fbase;
  return nullptr;
}

// A constructor cannot refuse the load, so a failed attach leaves the library
// loaded but unregistered.
__attribute__((constructor)) void OnLoad() {
  if (FirstStartupHook() == 1) LibraryEntry(LoadReason::kProcessAttach, InstanceHandle());
}

__attribute__((destructor)) void OnUnload() {
  LibraryEntry(LoadReason::kProcessDetach, nullptr);
}

}  // namespace
