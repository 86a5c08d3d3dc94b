# Compares the demangled dynamic symbol table of LIBRARY with the list in
# EXPECTED (one name a line; blank lines and lines starting with # are
# skipped). Constructor and destructor variants of the C++ ABI demangle to one
# name and count once.
find_program(NM_TOOL NAMES nm REQUIRED)
execute_process(COMMAND ${NM_TOOL} -D --defined-only -C ${LIBRARY}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REPLACE "\n" ";" lines "${symbols}")
set(actual "")
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-fA-F]* +[A-Za-z] +(.+)$")
    list(APPEND actual "${CMAKE_MATCH_1}")
  endif()
endforeach()
list(REMOVE_DUPLICATES actual)
list(SORT actual)

file(STRINGS ${EXPECTED} expected_lines)
set(expected "")
foreach(line IN LISTS expected_lines)
  string(STRIP "${line}" line)
  if(line STREQUAL "" OR line MATCHES "^#")
    continue()
  endif()
  list(APPEND expected "${line}")
endforeach()
list(REMOVE_DUPLICATES expected)
list(SORT expected)

set(missing ${expected})
list(REMOVE_ITEM missing ${actual})
set(extra ${actual})
list(REMOVE_ITEM extra ${expected})
list(LENGTH actual count)
if(missing OR extra)
  string(REPLACE ";" "\n  " missing_text "${missing}")
  string(REPLACE ";" "\n  " extra_text "${extra}")
  message(FATAL_ERROR "exported names differ from ${EXPECTED}\n"
    "listed but not exported:\n  ${missing_text}\n"
    "exported but not listed:\n  ${extra_text}\n")
endif()
message(STATUS "libquadrel.so exports exactly the ${count} listed names")
