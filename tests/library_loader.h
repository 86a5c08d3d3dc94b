// Loading and unloading a shared library by path at run time, on ELF systems
// (dlopen) and on Windows (LoadLibrary), for the tests of the load hooks.
#ifndef QUADREL_TESTS_LIBRARY_LOADER_H
#define QUADREL_TESTS_LIBRARY_LOADER_H

#include <string>

// Loads the library at path and runs its load hook. Returns a handle, or
// nullptr when the library could not be loaded (LoaderError says why).
void *OpenLibrary(const char *path);

// Unloads a library that OpenLibrary gave and runs its unload hook. Returns
// true on success.
bool CloseLibrary(void *library);

// The loader's message about the last failure.
std::string LoaderError();

// Whether a library whose attach fails stays unloaded: a DLL's entry point can
// refuse the load (the system then detaches it at once), an ELF constructor
// cannot.
extern const bool kFailedAttachRefusesLoad;

#endif  // QUADREL_TESTS_LIBRARY_LOADER_H
