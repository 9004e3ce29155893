#!/usr/bin/env bash
# Installs the built tree into a scratch prefix, builds examples/consumer against it twice (through
# the CMake package, then through pkg-config) and runs both on the bundled example. The installed
# tool, which must find the library by its own RUNPATH, converts the same channel and must write the
# same document. Optional: the compiler and the flags (those of a sanitized library) to build the
# consumer with.
set -euo pipefail
build="$1"
work="$2"
cxx="${3:-g++}"
flags="${4:-}"
root="$(cd "$(dirname "$0")/../.." && pwd)"
consumer="$root/examples/consumer"
example="$root/examples/measurement.json"
rm -rf "$work"
prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

for f in include/VantraCore/VantraCore.h include/VantraCore/Version.h lib/libVantraCore-0.so lib/cmake/VantraCore/VantraCoreConfig.cmake \
         lib/cmake/VantraCore/VantraCoreConfigVersion.cmake lib/pkgconfig/VantraCore-0.pc; do
  [ -e "$prefix/$f" ] || { echo "missing after install: $f"; exit 1; }
done

# The header, the pkg-config file and the CMake package carry one version.
version=$(sed -n 's/^#define VANTRACORE_VERSION_STRING "\(.*\)"$/\1/p' "$prefix/include/VantraCore/Version.h")
pc_version=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --modversion VantraCore-0)
cmake_version=$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")$/\1/p' "$prefix/lib/cmake/VantraCore/VantraCoreConfigVersion.cmake")
if [ -z "$version" ] || [ "$pc_version" != "$version" ] || [ "$cmake_version" != "$version" ]; then
  echo "versions differ: header '$version', pkg-config '$pc_version', CMake package '$cmake_version'"; exit 1
fi

cmake -S "$consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$work/consumer" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$work/consumer/consumer" "$example" >"$work/converted.json"

# $flags splits into words on purpose.
PKG_CONFIG_PATH="$prefix/lib/pkgconfig" "$cxx" $flags -o "$work/consumer_pc" "$consumer/main.cpp" \
  $(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs VantraCore-0)
LD_LIBRARY_PATH="$prefix/lib" "$work/consumer_pc" "$example" | cmp - "$work/converted.json"

if [ -e "$build/tools/vantra/vantra" ]; then
  [ -x "$prefix/bin/vantra" ] || { echo "missing after install: bin/vantra"; exit 1; }
  env -u LD_LIBRARY_PATH "$prefix/bin/vantra" convert "$example" --at channels/0/samples --to V --digits 15 |
    cmp - "$work/converted.json"
fi
# The Python module, found by PYTHONPATH alone, must find the installed library by its RUNPATH.
if ls "$build"/python/vantracore.*.so >/dev/null 2>&1; then
  site="$prefix/lib/python3/dist-packages"
  [ -e "$site/vantracore.pyi" ] || { echo "missing after install: vantracore.pyi"; exit 1; }
  env -u LD_LIBRARY_PATH PYTHONPATH="$site" /usr/bin/python3 -c "
import os, vantracore
assert vantracore.__file__.startswith('$site'), vantracore.__file__
vantracore.Unit('mV')
loaded = {os.path.realpath(line.split()[-1]) for line in open('/proc/self/maps') if 'libVantraCore-0.so' in line}
assert loaded == {os.path.realpath('$prefix/lib/libVantraCore-0.so')}, loaded"
fi
echo "install check passed"
