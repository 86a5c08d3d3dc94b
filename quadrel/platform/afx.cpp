#include "quadrel/platform/afx.h"

#include <string>
#include <vector>

namespace {

// Sentinels that stand for the framework's own list entries.
int classSentinel;
int factorySentinel;

AfxModuleState moduleState = {&classSentinel, &factorySentinel};
std::vector<std::string> &Events() {
  static std::vector<std::string> events;
  return events;
}
CDynLinkLibrary *firstLibrary = nullptr;
int initResult = 1;

}  // namespace

AfxModuleState *AfxGetModuleState() {
  Events().push_back("AfxGetModuleState");
  return &moduleState;
}

int AfxInitExtensionModule(AfxExtensionModule &state, void *instance) {
  Events().push_back("AfxInitExtensionModule");
  if (initResult == 0) return 0;
  state.module = instance;
  state.initialized = 1;
  return 1;
}

void AfxTermExtensionModule(AfxExtensionModule &state, bool) {
  Events().push_back("AfxTermExtensionModule");
  state.initialized = 0;
}

CDynLinkLibrary::CDynLinkLibrary(AfxExtensionModule &state, bool) : module(&state) {
  Events().push_back("CDynLinkLibrary");
  next = firstLibrary;
  firstLibrary = this;
}

int AfxEventCount() { return static_cast<int>(Events().size()); }

const char *AfxEvent(int k) { return Events().at(static_cast<size_t>(k)).c_str(); }

void AfxClearEvents() { Events().clear(); }

CDynLinkLibrary *AfxFirstDynLinkLibrary() { return firstLibrary; }

void AfxSetInitResult(int result) { initResult = result; }
