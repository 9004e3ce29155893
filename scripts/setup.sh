#!/usr/bin/env bash
# Installs the Debian packages the build needs, clang and its sanitizer runtimes for the fuzz targets
# among them, libc++ for the client that proves the binary boundary against another standard library,
# Debian's Python with pybind11, NumPy and pytest for the Python module, and the llvm tools that read
# the coverage of the fuzz corpora. Idempotent: does nothing when all are present.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config ccache
  nlohmann-json3-dev libutfcpp-dev libsimdjson-dev libfmt-dev
  libcli11-dev libcsv-dev librsvg2-bin
  googletest libgtest-dev libgmock-dev libbenchmark-dev librapidcheck-dev
  clang libclang-rt-14-dev libc++-14-dev libc++abi-14-dev llvm-14
  python3-dev pybind11-dev python3-numpy python3-pytest jq
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: need root or sudo to install ${missing[*]}" >&2; exit 1; }
  sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
