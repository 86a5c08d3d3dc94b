# Debian packages, made with `cpack` in a build configured with
# CMAKE_INSTALL_PREFIX=/usr (`./run package` does both):
#   libquadrel0     the shared libraries               install component "runtime"
#   libquadrel-dev  headers, CMake package, quadrel.pc  install component "dev"
#   quadrel-tools   quadrel-fit                         install component "tools"
# Dependencies on other packages come from dpkg-shlibdeps. libquadrel0 ships a
# shlibs file, so that quadrel-tools, and every package built against it,
# depends on it through its SONAME. The package summary is the project's
# description; each package's description says what it holds.
#
# Only a build of quadrel itself makes packages, not a project that adds it
# with add_subdirectory.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

set(CPACK_PACKAGE_NAME quadrel)
set(CPACK_PACKAGE_VENDOR "quadrel developers")
set(CPACK_PACKAGE_CONTACT "quadrel developers <quadrel@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libquadrel${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# dpkg-shlibdeps finds the libraries that quadrel-fit links in the build tree
# and, as for any package being built, their shlibs entries in the DEBIAN
# folder above them: the same entries that libquadrel0 ships.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
cmake_path(GET CMAKE_LIBRARY_OUTPUT_DIRECTORY PARENT_PATH _quadrel_shlibs_root)
set(_quadrel_shlibs "")
foreach(library IN ITEMS quadrel quadrel_platform quadrel_metrology quadrel_robust)
  if(NOT TARGET ${library})
    continue()
  endif()
  string(APPEND _quadrel_shlibs "lib${library} ${PROJECT_VERSION_MAJOR} "
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (${CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY} "
    "${PROJECT_VERSION})\n")
endforeach()
file(WRITE ${_quadrel_shlibs_root}/DEBIAN/shlibs "${_quadrel_shlibs}")

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Matrices, linear algebra, 3-D geometry, shape fits and \
estimators, reproducible bit for bit. This package holds the shared libraries.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libquadrel-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEV_DESCRIPTION "The headers, the CMake package \
(find_package(quadrel CONFIG)) and quadrel.pc for pkg-config.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME quadrel-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "quadrel-fit fits lines, planes, circles, spheres, \
ellipses, paraboloids, trihedrals and quality peaks to points in files; quadrel-fit demo \
shows every fit on built-in samples.")

include(CPack)
