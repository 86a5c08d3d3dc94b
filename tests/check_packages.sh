#!/usr/bin/env bash
# Installs the Debian packages made by `./run package` the way a user would,
# then builds tests/consumer against them through find_package(quadrel 0.2)
# and through pkg-config, runs it, checks that every place that states the
# version agrees, runs `quadrel-fit demo` from the PATH, removes the packages
# and checks that none of their files is left behind.
#
# Usage: tests/check_packages.sh [--host] DEB_DIR
#
# The packages go into a throwaway Debian root made by mmdebstrap, with only a
# compiler, CMake and pkg-config added, so that their dependencies are tested
# on a clean system. With --host, or when mmdebstrap is missing or cannot make
# a root, they go into this machine instead (as root; they must not be
# installed already) and are removed again at the end, also on failure.
set -euo pipefail

packages=(libquadrel0 libquadrel-dev quadrel-tools)

fail() {
  echo "check_packages: $*" >&2
  exit 1
}

# The checks proper, run as root on the system that receives the packages.
# WORK holds debs/ and consumer/.
inside() {
  local work="$1" deb file version
  cd "$work"
  # What dpkg-shlibdeps computed, and the exact pairing of headers and libraries.
  version="$(dpkg-deb -f debs/libquadrel0_*.deb Version)"
  dpkg-deb -f debs/quadrel-tools_*.deb Depends | grep -q 'libquadrel0 (>= ' ||
    fail "quadrel-tools does not depend on libquadrel0"
  [ "$(dpkg-deb -f debs/libquadrel-dev_*.deb Depends)" = "libquadrel0 (= $version)" ] ||
    fail "libquadrel-dev does not depend on libquadrel0 (= $version)"
  # The shared libraries live in libquadrel0 alone; -dev has only their link names.
  local runtime_files library
  runtime_files="$(dpkg-deb --fsys-tarfile debs/libquadrel0_*.deb | tar -t)"
  for library in libquadrel.so.0 libquadrel_platform.so.0 libquadrel_metrology.so.0 \
    libquadrel_robust.so.0; do
    grep -q "/$library\$" <<< "$runtime_files" || fail "libquadrel0 does not hold $library"
  done
  if dpkg-deb --fsys-tarfile debs/libquadrel-dev_*.deb | tar -t | grep '\.so\.'; then
    fail "libquadrel-dev holds the shared libraries above"
  fi
  export DEBIAN_FRONTEND=noninteractive
  apt-get install -y -qq --no-install-recommends ./debs/*.deb > apt.log ||
    fail "the packages do not install: $(cat apt.log)"
  for deb in debs/*.deb; do
    dpkg-deb --fsys-tarfile "$deb" | tar -t | sed -n 's|^\./|/|p' >> files.txt
  done

  local multiarch
  multiarch="$(dpkg-architecture -qDEB_HOST_MULTIARCH 2> /dev/null || gcc -print-multiarch)"
  [ "$(readlink "/usr/lib/$multiarch/libquadrel.so")" = libquadrel.so.0 ] ||
    fail "libquadrel.so does not point to the SONAME libquadrel.so.0"

  cat > consumer/CMakeLists.txt << 'EOF'
cmake_minimum_required(VERSION 3.25)
project(quadrel_consumer LANGUAGES CXX)
find_package(quadrel 0.2 CONFIG REQUIRED)
add_executable(consumer consumer.cpp)
add_executable(version version.cpp)
target_link_libraries(consumer PRIVATE quadrel::quadrel)
target_link_libraries(version PRIVATE quadrel::quadrel)
file(WRITE ${CMAKE_BINARY_DIR}/package_version.txt ${quadrel_VERSION})
EOF
  cat > consumer/version.cpp << 'EOF'
#include <cstdio>

#include <quadrel/version.h>

int main() {
  std::printf("%d.%d.%d %s\n", QUADREL_VERSION_MAJOR, QUADREL_VERSION_MINOR,
              QUADREL_VERSION_PATCH, QUADREL_VERSION_STRING);
}
EOF
  if ! cmake -S consumer -B cmake-build -DCMAKE_BUILD_TYPE=Release > cmake.log 2>&1 ||
    ! cmake --build cmake-build >> cmake.log 2>&1; then
    fail "the CMake consumer does not build: $(cat cmake.log)"
  fi
  [ "$(cmake-build/consumer)" = "consumer ok" ] || fail "the CMake consumer fails"

  # shellcheck disable=SC2046  # the flags are meant to split
  c++ -std=c++17 consumer/consumer.cpp -o pkg-consumer $(pkg-config --cflags --libs quadrel) ||
    fail "the pkg-config consumer does not build"
  [ "$(./pkg-consumer)" = "consumer ok" ] || fail "the pkg-config consumer fails"

  local -A stated=(
    ["<quadrel/version.h>"]="$(cmake-build/version)"
    ["quadrel.pc"]="$(pkg-config --modversion quadrel)"
    ["the CMake package"]="$(cat cmake-build/package_version.txt)"
    ["quadrel-fit --version"]="$(quadrel-fit --version)")
  local where
  for where in "${!stated[@]}"; do
    case "${stated[$where]}" in
      "$version $version" | "$version" | "quadrel-fit $version") ;;
      *) fail "$where states version '${stated[$where]}', the packages $version" ;;
    esac
  done

  [ "$(command -v quadrel-fit)" = /usr/bin/quadrel-fit ] || fail "quadrel-fit is not on the PATH"
  quadrel-fit demo > demo.txt || fail "quadrel-fit demo fails"
  grep -q '^sphere ' demo.txt || fail "quadrel-fit demo prints no sphere fit"

  dpkg --purge "${packages[@]}" > /dev/null
  while read -r file; do
    if [ -e "$file" ] && [ ! -d "$file" ] || [ -L "$file" ]; then
      fail "$file is left after the packages were removed"
    fi
  done < files.txt
  echo "check_packages: the packages install, serve a CMake and a pkg-config consumer at" \
    "version $version, run quadrel-fit demo from the PATH, and remove cleanly"
}

if [ "${1:-}" = --inside ]; then
  inside "$2"
  exit 0
fi

host=false
if [ "${1:-}" = --host ]; then
  host=true
  shift
fi
[ $# -eq 1 ] || fail "usage: tests/check_packages.sh [--host] DEB_DIR"
deb_dir="$(cd "$1" && pwd)"
for package in "${packages[@]}"; do
  compgen -G "$deb_dir/${package}_*.deb" > /dev/null || fail "no ${package}_*.deb in $deb_dir"
done
command -v mmdebstrap > /dev/null || host=true

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/check/debs" "$work/check/consumer"
cp "$deb_dir"/*.deb "$work/check/debs/"
cp "$(dirname "$0")/consumer/consumer.cpp" "$work/check/consumer/"
cp "$0" "$work/check/check_packages.sh"

# Installs into this machine, and removes the packages again whatever happens.
on_host() {
  [ "$(id -u)" -eq 0 ] || fail "installing into this machine needs root"
  for package in "${packages[@]}"; do
    if dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2> /dev/null | grep -q '^i'; then
      fail "$package is installed on this machine already; remove it first"
    fi
  done
  trap 'dpkg --purge "${packages[@]}" > /dev/null 2>&1 || true; rm -rf "$work"' EXIT
  inside "$work/check"
}

if $host; then
  on_host
else
  # A minimal root of this machine's release, discarded afterwards.
  # shellcheck disable=SC1091
  codename="$(. /etc/os-release && echo "${VERSION_CODENAME:-bookworm}")"
  echo "check_packages: making a throwaway $codename root"
  # shellcheck disable=SC2016  # mmdebstrap gives the hook the root as $1
  if ! mmdebstrap --quiet --variant=minbase --include=g++,cmake,make,pkgconf,dpkg-dev \
    --customize-hook="copy-in $work/check /tmp" --customize-hook="touch $work/root-made" \
    --customize-hook='chroot "$1" bash /tmp/check/check_packages.sh --inside /tmp/check' \
    "$codename" /dev/null; then
    [ ! -e "$work/root-made" ] || exit 1
    # No root could be made (no mirror, no right to mount): check on this machine.
    echo "check_packages: no throwaway root; installing into this machine instead"
    on_host
  fi
fi
