#!/bin/sh
# Runs a Windows program built by the mingw-w64 compiler TRIPLET under Wine:
#   wine_run.sh TRIPLET PROGRAM [ARGUMENTS...]
# The compiler's runtime DLLs (libstdc++, libgcc, winpthread) are found
# through WINEPATH. The Wine prefix (WINEPREFIX, else ~/.wine) is made on
# first use, once, even when several tests start together.
set -eu
triplet=$1
shift
case "$triplet" in
  x86_64-*) loader=/usr/lib/wine/wine64 ;;
  *) loader=/usr/lib/wine/wine ;;
esac
if [ ! -x "$loader" ]; then
  echo "wine_run.sh: $loader is missing (Debian: wine64 for 64-bit programs, wine32 for 32-bit)" >&2
  exit 127
fi
runtime=$(dirname "$("$triplet-g++-posix" -print-file-name=libstdc++-6.dll)")
export WINEPATH="$runtime;/usr/$triplet/lib"
export WINEDEBUG=${WINEDEBUG:--all}
export WINEPREFIX=${WINEPREFIX:-$HOME/.wine}
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$(dirname "$WINEPREFIX")"
  flock "$WINEPREFIX.lock" sh -c '[ -f "$WINEPREFIX/system.reg" ] || "$0" wineboot --init' "$loader" >/dev/null 2>&1
fi
exec "$loader" "$@"
