# 32-bit x86 Linux on an x86-64 host, with the host's multilib g++ (Debian:
# g++-multilib). Its programs run natively, or under qemu-i386 where the
# kernel cannot run 32-bit programs (run_x86.sh). Arithmetic stays on
# SSE2; the project adds -msse2 -mfpmath=sse for every 32-bit x86 target.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_EXE_LINKER_FLAGS_INIT -m32)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -m32)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -m32)
# Libraries of the host are 64-bit: search the 32-bit folders.
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(FIND_LIBRARY_USE_LIB32_PATHS ON)
# Tests run through this launcher: natively, or emulated on a kernel built
# without 32-bit support.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run_x86.sh)
