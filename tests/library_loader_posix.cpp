#include <dlfcn.h>

#include "library_loader.h"

void *OpenLibrary(const char *path) {
  return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

bool CloseLibrary(void *library) {
  return dlclose(library) == 0;
}

std::string LoaderError() {
  const char *text = dlerror();
  return text != nullptr ? text : "";
}

const bool kFailedAttachRefusesLoad = false;
