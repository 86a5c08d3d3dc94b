// Loading the library (libquadrel.so, quadrel.dll) registers it with the
// application framework, and unloading takes the registration back, in the
// order the framework expects, whatever the platform's hooks.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library_loader.h"
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

  void *library = OpenLibrary(QUADREL_LIBRARY_PATH);
  ASSERT_NE(library, nullptr) << LoaderError();
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
  ASSERT_TRUE(CloseLibrary(library));
  EXPECT_EQ(Events(), (std::vector<std::string>{"AfxGetModuleState", "AfxInitExtensionModule",
                                                "CDynLinkLibrary", "AfxTermExtensionModule"}));
  EXPECT_EQ(copy.classListHead, nullptr);
}

TEST(LoadHooks, FailedInitialisationMakesNoLibraryRecord) {
  AfxSetInitResult(0);
  AfxClearEvents();
  CDynLinkLibrary *before = AfxFirstDynLinkLibrary();
  void *library = OpenLibrary(QUADREL_LIBRARY_PATH);
  std::vector<std::string> expected = {"AfxGetModuleState", "AfxInitExtensionModule"};
  if (kFailedAttachRefusesLoad) {
    // The load fails, and the system detaches the library at once.
    EXPECT_EQ(library, nullptr);
    expected.push_back("AfxTermExtensionModule");
  } else {
    ASSERT_NE(library, nullptr) << LoaderError();
  }
  EXPECT_EQ(Events(), expected);
  EXPECT_EQ(AfxFirstDynLinkLibrary(), before);
  if (library != nullptr) {
    EXPECT_TRUE(CloseLibrary(library));
  }
  AfxSetInitResult(1);
}

}  // namespace
