#!/usr/bin/env bash
# Builds the foreign client with clang++ against libc++ and the library's headers, links it to the
# shared objects of the normal g++ build alone (the library and the unit companion), and runs it
# twice: plain, and under clang's AddressSanitizer with leak detection. Exits 77 (skipped) when clang++ or libc++ is missing, or
# when the library itself is sanitized: gcc's and clang's sanitizer runtimes do not mix.
set -euo pipefail
source_dir="$1"   # the tests/abi folder
library="$2"      # libVantraCore-0.so
companion="$3"    # the companion module between the client and the library
work="$4"
sanitized="${5:-}"
skip() { echo "skipped: $*"; exit 77; }

[ -z "$sanitized" ] || skip "the library is built with sanitizers ($sanitized)"
command -v clang++ >/dev/null || skip "clang++ not found"
rm -rf "$work" && mkdir -p "$work"
echo '#include <vector>
int main() { return std::vector<int>(1).size() == 1 ? 0 : 1; }' >"$work/probe.cpp"
clang++ -stdlib=libc++ "$work/probe.cpp" -o "$work/probe" 2>/dev/null && "$work/probe" ||
  skip "clang++ cannot build against libc++ (libc++-14-dev, libc++abi-14-dev)"

include="$(cd "$source_dir/../../include" && pwd)"
libdir="$(cd "$(dirname "$library")" && pwd)"
companion_dir="$(cd "$(dirname "$companion")" && pwd)"
build() {
  local out="$1"; shift
  clang++ -std=c++17 -stdlib=libc++ -Wall -Wextra -Wpedantic -Werror -O1 -g "$@" -I"$include" \
    "$source_dir/ForeignClient.cpp" -o "$out" "$companion" "$library" -Wl,-rpath,"$libdir:$companion_dir"
}

build "$work/client"
"$work/client"
echo "plain client: ok"

clang++ -fsanitize=address "$work/probe.cpp" -o "$work/probe_asan" 2>/dev/null ||
  skip "clang's AddressSanitizer runtime is missing (libclang-rt-14-dev)"
build "$work/client_asan" -fsanitize=address -fno-omit-frame-pointer
ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1 "$work/client_asan"
echo "client under AddressSanitizer: ok"
