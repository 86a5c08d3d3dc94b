#!/bin/sh
# Runs a 32-bit x86 Linux program: natively where the kernel runs 32-bit
# programs, else under qemu-i386 (Debian: qemu-user), whose SSE2 arithmetic
# is exact IEEE arithmetic, so results are the same bits either way.
if /lib/ld-linux.so.2 --version >/dev/null 2>&1; then
  exec "$@"
fi
exec qemu-i386 "$@"
