// Loading libquadrel.so registers it with the application framework, and
// unloading takes the registration back, in the order the framework expects.
#include <dlfcn.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/platform/afx.h"

namespace {

std::vector<std::string> Events() {
  std::vector<std::string> events;
  for (int k = 0; k < AfxEventCount(); ++k)
    events.push_back(AfxEvent(k));
  return events;
}

TEST(LoadHooks, RegisterOnLoadAndTakeBackOnUnload) {
  AfxClearEvents();
  AfxModuleState *state = AfxGetModuleState();
  ASSERT_NE(state->classListHead, nullptr);
  ASSERT_NE(state->factoryListHead, nullptr);
  AfxClearEvents();

  void *library = dlopen(QUADREL_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  EXPECT_EQ(Events(), (std::vector<std::string>{"AfxGetModuleState", "AfxInitExtensionModule",
                                                "CDynLinkLibrary"}));
  // The start-up hook took over both list heads and emptied them.
  EXPECT_EQ(state->classListHead, nullptr);
  EXPECT_EQ(state->factoryListHead, nullptr);
  // One library record is chained into the framework, and it is initialised.
  CDynLinkLibrary *link = AfxFirstDynLinkLibrary();
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(link->module->initialized, 1);
  EXPECT_NE(link->module->module, nullptr);
  EXPECT_NE(link->module->firstSharedClass, nullptr);

  AfxModuleState copy = *state;
  ASSERT_EQ(dlclose(library), 0);
  EXPECT_EQ(Events(), (std::vector<std::string>{"AfxGetModuleState", "AfxInitExtensionModule",
                                                "CDynLinkLibrary", "AfxTermExtensionModule"}));
  EXPECT_EQ(copy.classListHead, nullptr);
}

TEST(LoadHooks, FailedInitialisationMakesNoLibraryRecord) {
  AfxSetInitResult(0);
  AfxClearEvents();
  CDynLinkLibrary *before = AfxFirstDynLinkLibrary();
  void *library = dlopen(QUADREL_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  EXPECT_EQ(Events(), (std::vector<std::string>{"AfxGetModuleState", "AfxInitExtensionModule"}));
  EXPECT_EQ(AfxFirstDynLinkLibrary(), before);
  ASSERT_EQ(dlclose(library), 0);
  AfxSetInitResult(1);
}

}  // namespace
