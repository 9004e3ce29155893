#!/usr/bin/env bash
# Installs the built tree into a scratch prefix and builds a consumer against it twice: once through
# the CMake package, once through pkg-config. Optional: the compiler and the flags (those of a
# sanitized library) to build the consumer with.
set -euo pipefail
build="$1"
work="$2"
cxx="${3:-g++}"
flags="${4:-}"
here="$(cd "$(dirname "$0")" && pwd)"
rm -rf "$work"
prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

for f in include/VantraCore/VantraCore.h lib/libVantraCore-0.so lib/cmake/VantraCore/VantraCoreConfig.cmake \
         lib/cmake/VantraCore/VantraCoreConfigVersion.cmake lib/pkgconfig/VantraCore-0.pc; do
  [ -e "$prefix/$f" ] || { echo "missing after install: $f"; exit 1; }
done

cmake -S "$here/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$work/consumer" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$work/consumer/consumer"

# $flags splits into words on purpose.
PKG_CONFIG_PATH="$prefix/lib/pkgconfig" "$cxx" $flags -o "$work/consumer_pc" "$here/consumer/main.cpp" \
  $(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs VantraCore-0)
LD_LIBRARY_PATH="$prefix/lib" "$work/consumer_pc"
