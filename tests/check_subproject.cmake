# Configures, builds and runs tests/subproject, which adds quadrel with
# add_subdirectory, in WORK_DIR, as if GoogleTest, CLI11, nlohmann-json, Google
# Benchmark and Eigen were not installed: as a subproject quadrel must need none
# of them, nor build anything but the library.
file(REMOVE_RECURSE ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/run_command.cmake)

set(absent "")
foreach(package GTest CLI11 nlohmann_json benchmark Eigen3 pybind11 Python3)
  list(APPEND absent -DCMAKE_DISABLE_FIND_PACKAGE_${package}=ON)
endforeach()
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR} -G ${GENERATOR} -DQUADREL_SOURCE_DIR=${SOURCE_DIR}
  -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release ${absent})
run(${CMAKE_COMMAND} --build ${WORK_DIR} --parallel)
foreach(program quadrel-fit quadrel-example)
  file(GLOB_RECURSE built ${WORK_DIR}/${program})
  if(built)
    message(FATAL_ERROR "the subproject build made ${program}, which only quadrel's own build needs")
  endif()
endforeach()
run(${WORK_DIR}/consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "the subproject consumer printed: ${last_output}")
endif()
message(STATUS "quadrel builds and links as a subproject")
