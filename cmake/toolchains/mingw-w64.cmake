# Shared part of the Windows toolchains: mingw-w64 g++ (Debian:
# g++-mingw-w64-i686, g++-mingw-w64-x86-64) for QUADREL_MINGW_TRIPLET. The
# compilers with the POSIX thread model give std::thread; the DLLs then need
# libstdc++-6.dll, libgcc_s_*.dll and libwinpthread-1.dll beside them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${QUADREL_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUADREL_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${QUADREL_MINGW_TRIPLET}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${QUADREL_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests run under Wine through wine_run.sh, which finds the runtime DLLs of
# this compiler. The i686 suite needs wine32, which a 64-bit kernel without
# 32-bit support cannot run.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine_run.sh;${QUADREL_MINGW_TRIPLET})

# The constants of <cmath> that glibc offers (M_PI, ...), which the tests use.
set(CMAKE_C_FLAGS_INIT -D_USE_MATH_DEFINES)
set(CMAKE_CXX_FLAGS_INIT -D_USE_MATH_DEFINES)
