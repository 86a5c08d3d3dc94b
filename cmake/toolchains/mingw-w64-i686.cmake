# 32-bit Windows DLLs, cross-built with mingw-w64. Arithmetic stays on SSE2;
# the project adds -msse2 -mfpmath=sse for every 32-bit x86 target.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(QUADREL_MINGW_TRIPLET i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
