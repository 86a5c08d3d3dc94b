// A small stand-in for the host application framework.
//
// On its home platform quadrel is an extension library of the host's
// application framework and registers with it when it is loaded. This library
// offers the four entry points that the load and unload hooks use, with the
// same calling pattern, and records every call so that tests can see what the
// hooks did. It is no part of quadrel's interface and holds nothing else.
#ifndef QUADREL_PLATFORM_AFX_H
#define QUADREL_PLATFORM_AFX_H

#if defined(_WIN32)
#if defined(QUADREL_PLATFORM_BUILDING)
#define QUADREL_PLATFORM_API __declspec(dllexport)
#else
#define QUADREL_PLATFORM_API __declspec(dllimport)
#endif
#else
#define QUADREL_PLATFORM_API __attribute__((visibility("default")))
#endif

// The framework's per-module state. The two list heads are where a module's
// runtime classes and class factories are chained.
struct AfxModuleState {
  void *classListHead;
  void *factoryListHead;
};

// The record that an extension library keeps of itself.
struct AfxExtensionModule {
  int initialized;
  void *module;            // the library's instance handle
  void *firstSharedClass;  // list heads taken over at start-up
  void *firstSharedFactory;
};

// The state of the module being loaded.
QUADREL_PLATFORM_API AfxModuleState *AfxGetModuleState();

// Initialises an extension module's record. Gives 1 on success, 0 on failure.
QUADREL_PLATFORM_API int AfxInitExtensionModule(AfxExtensionModule &state, void *instance);

// Takes back what AfxInitExtensionModule set up.
QUADREL_PLATFORM_API void AfxTermExtensionModule(AfxExtensionModule &state, bool all = false);

// Chains an extension module into the framework's list of loaded libraries.
// Made on the heap by the library's entry point and never deleted.
class QUADREL_PLATFORM_API CDynLinkLibrary {
 public:
  explicit CDynLinkLibrary(AfxExtensionModule &state, bool system = false);
  AfxExtensionModule *module;
  CDynLinkLibrary *next;
};

// What tests read: the calls made so far, one event a call, oldest first
// ("AfxGetModuleState", "AfxInitExtensionModule", "CDynLinkLibrary",
// "AfxTermExtensionModule"), and the framework's chain of libraries.
QUADREL_PLATFORM_API int AfxEventCount();
QUADREL_PLATFORM_API const char *AfxEvent(int k);
QUADREL_PLATFORM_API void AfxClearEvents();
QUADREL_PLATFORM_API CDynLinkLibrary *AfxFirstDynLinkLibrary();
// The result that the next AfxInitExtensionModule gives (1 by default).
QUADREL_PLATFORM_API void AfxSetInitResult(int result);

#endif  // QUADREL_PLATFORM_AFX_H
