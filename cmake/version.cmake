# <quadrel/version.h>: the project's version as macros, generated into the
# build tree, on the include path of everything that links quadrel, and
# installed beside the public headers.
set(QUADREL_GENERATED_INCLUDE_DIR ${PROJECT_BINARY_DIR}/include)
configure_file(${PROJECT_SOURCE_DIR}/cmake/version.h.in
  ${QUADREL_GENERATED_INCLUDE_DIR}/quadrel/version.h @ONLY)
target_include_directories(quadrel PUBLIC $<BUILD_INTERFACE:${QUADREL_GENERATED_INCLUDE_DIR}>)
install(FILES ${QUADREL_GENERATED_INCLUDE_DIR}/quadrel/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quadrel)
