# quadrel_add_layer_library: a shared library of its own on top of
# libquadrel.so (libquadrel_metrology.so, libquadrel_robust.so; on Windows
# quadrel_metrology.dll, quadrel_robust.dll), built alike.
#
#   quadrel_add_layer_library(NAME <name> HEADERS <public headers...>
#                             [PRIVATE_LINK <targets...>])
#
# Called from quadrel/<name>/. The sources (*.cpp and internal/*.cpp but the
# *_test.cpp) compile once into quadrel_<name>_objects with hidden visibility
# and QUADREL_<NAME>_BUILDING; the shared library quadrel_<name> (alias
# quadrel::<name>) is linked from them and installed with its public headers
# (runtime and dev components). With tests on, quadrel_<name>_tests links the
# same objects directly, so that the tests reach the internal helpers, and
# its tests carry the label <name>.
function(quadrel_add_layer_library)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "HEADERS;PRIVATE_LINK")
  set(lib quadrel_${arg_NAME})
  string(TOUPPER "QUADREL_${arg_NAME}_BUILDING" building)

  file(GLOB sources CONFIGURE_DEPENDS *.cpp internal/*.cpp)
  list(FILTER sources EXCLUDE REGEX "_test\\.cpp$")
  add_library(${lib}_objects OBJECT ${sources})
  target_include_directories(${lib}_objects PUBLIC ${PROJECT_SOURCE_DIR})
  set_target_properties(${lib}_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_definitions(${lib}_objects PRIVATE ${building})
  target_link_libraries(${lib}_objects PRIVATE quadrel_flags)

  add_library(${lib} SHARED $<TARGET_OBJECTS:${lib}_objects>)
  add_library(quadrel::${arg_NAME} ALIAS ${lib})
  target_sources(${lib} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}
    FILES ${arg_HEADERS})
  target_link_libraries(${lib} PUBLIC quadrel::quadrel PRIVATE ${arg_PRIVATE_LINK} quadrel_flags)
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT QUADREL_SANITIZE AND NOT QUADREL_SANITIZE_THREAD)
    target_link_options(${lib} PRIVATE -Wl,--no-undefined)
  endif()
  set_target_properties(${lib} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    INSTALL_RPATH "$ORIGIN"
    EXPORT_NAME ${arg_NAME})
  if(WIN32)
    # quadrel_<name>.dll with import library libquadrel_<name>.dll.a, named
    # like quadrel.dll.
    set_target_properties(${lib} PROPERTIES PREFIX "")
  endif()
  install(TARGETS ${lib} EXPORT quadrelTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

  if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    include(GoogleTest)
    file(GLOB tests CONFIGURE_DEPENDS *_test.cpp internal/*_test.cpp)
    add_executable(${lib}_tests ${tests} $<TARGET_OBJECTS:${lib}_objects>)
    target_include_directories(${lib}_tests PRIVATE ${PROJECT_SOURCE_DIR})
    # The objects are linked in, not imported from the DLL (Windows).
    target_compile_definitions(${lib}_tests PRIVATE ${building})
    target_link_libraries(${lib}_tests PRIVATE quadrel::quadrel ${arg_PRIVATE_LINK} quadrel_flags
      GTest::gtest GTest::gtest_main)
    gtest_discover_tests(${lib}_tests DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${arg_NAME})
  endif()
endfunction()
