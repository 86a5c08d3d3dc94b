# GoogleTest built from Debian's source package (googletest, in
# /usr/src/googletest) with the compiler of this build, for targets that the
# host's libgtest cannot serve: 32-bit x86 and Windows. Included at the end of
# the project(quadrel) call through CMAKE_PROJECT_quadrel_INCLUDE (see CMakePresets.json);
# every later find_package(GTest) gives these targets.
include(FetchContent)
set(QUADREL_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources to build")
if(NOT EXISTS ${QUADREL_GOOGLETEST_SOURCE}/CMakeLists.txt)
  message(FATAL_ERROR "quadrel: no GoogleTest sources in ${QUADREL_GOOGLETEST_SOURCE}; "
                      "install the Debian package googletest")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
FetchContent_Declare(GTest SOURCE_DIR ${QUADREL_GOOGLETEST_SOURCE} OVERRIDE_FIND_PACKAGE)
FetchContent_MakeAvailable(GTest)
# Its own code is not held to this project's warnings.
foreach(target gtest gtest_main gmock gmock_main)
  set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR OFF)
endforeach()
