#!/bin/sh
# Measures how the elementary functions of 32-bit x86 Linux and of 64-bit
# Windows (under Wine) differ from glibc's on x86-64 and from the correctly
# rounded values (MPFR). Needs g++-multilib, g++-mingw-w64-x86-64, wine64,
# qemu-user (where the kernel cannot run 32-bit programs) and libmpfr-dev.
#   bench/platform_math/measure.sh [COUNT]
set -eu
here=$(cd "$(dirname "$0")" && pwd)
toolchains=$here/../../cmake/toolchains
count=${1:-1000000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
flags="-O2 -std=c++17 -ffp-contract=off"
g++ $flags "$here/dump_math.cpp" -o "$work/dump-x64"
g++ -m32 -msse2 -mfpmath=sse $flags "$here/dump_math.cpp" -o "$work/dump-x86"
x86_64-w64-mingw32-g++-posix $flags -static "$here/dump_math.cpp" -o "$work/dump-w64.exe"
g++ $flags "$here/compare_math.cpp" -o "$work/compare" -lmpfr
"$work/dump-x64" "$work/x64.bin" "$count"
"$toolchains/run_x86.sh" "$work/dump-x86" "$work/x86.bin" "$count"
"$toolchains/wine_run.sh" x86_64-w64-mingw32 "$work/dump-w64.exe" "$work/w64.bin" "$count"
"$work/compare" "$count" "$work/x64.bin" "linux-x86=$work/x86.bin" "windows-x64=$work/w64.bin"
