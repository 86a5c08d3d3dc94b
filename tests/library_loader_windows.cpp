#include <windows.h>

#include "library_loader.h"

void *OpenLibrary(const char *path) {
  return reinterpret_cast<void *>(LoadLibraryA(path));
}

bool CloseLibrary(void *library) {
  return FreeLibrary(reinterpret_cast<HMODULE>(library)) != 0;
}

std::string LoaderError() {
  return "LoadLibrary failed with error " + std::to_string(GetLastError());
}

const bool kFailedAttachRefusesLoad = true;
