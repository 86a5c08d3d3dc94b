# 64-bit Windows DLLs, cross-built with mingw-w64.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QUADREL_MINGW_TRIPLET x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
