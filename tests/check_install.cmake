# Installs the build in BUILD_DIR into a fresh prefix under WORK_DIR, then
# builds and runs a consumer against it twice: through find_package and
# through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

include(${CMAKE_CURRENT_LIST_DIR}/run_command.cmake)

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(file include/quadrel/quadrel.h include/quadrel/matrix/matrix.h lib/pkgconfig/quadrel.pc
        lib/cmake/quadrel/quadrelConfig.cmake)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "install did not give ${file}")
  endif()
endforeach()
file(GLOB_RECURSE internal_headers ${prefix}/include/*/internal/*)
if(internal_headers)
  message(FATAL_ERROR "internal headers were installed: ${internal_headers}")
endif()

# find_package(quadrel CONFIG) gives quadrel::quadrel.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake-build
  -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "the CMake consumer printed: ${last_output}")
endif()

# pkg-config --cflags --libs quadrel.
find_program(PKG_CONFIG NAMES pkg-config pkgconf)
if(PKG_CONFIG)
  set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs quadrel OUTPUT_VARIABLE flags
    RESULT_VARIABLE status OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "pkg-config does not find quadrel")
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${CXX} -std=c++17 ${CONSUMER_DIR}/consumer.cpp -o ${WORK_DIR}/pkg-consumer ${flags}
    -Wl,-rpath,${prefix}/lib)
  run(${WORK_DIR}/pkg-consumer)
  if(NOT last_output MATCHES "consumer ok")
    message(FATAL_ERROR "the pkg-config consumer printed: ${last_output}")
  endif()
else()
  message(FATAL_ERROR "pkg-config is missing: install the Debian package pkgconf")
endif()
message(STATUS "installed package works through find_package and pkg-config")
