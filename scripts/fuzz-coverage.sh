#!/usr/bin/env bash
# Runs each fuzz target of a coverage build once over its committed corpus, then prints the line
# coverage that the corpora reach, per file and per folder of the library and the tool.
# Usage: scripts/fuzz-coverage.sh BUILD_DIR TARGET...
set -euo pipefail
build=$1
shift
profiles=$build/profiles
rm -rf "$profiles"
mkdir -p "$profiles"
objects=()
for f in "$@"; do
  LLVM_PROFILE_FILE=$profiles/$f.profraw "$build/fuzz/fuzz_$f" -runs=0 "fuzz/corpus/$f" >"$profiles/$f.log" 2>&1
  # The first program goes bare, the others each after -object.
  [ ${#objects[@]} -eq 0 ] && objects+=("$build/fuzz/fuzz_$f") || objects+=(-object "$build/fuzz/fuzz_$f")
done
llvm-profdata-14 merge -sparse "$profiles"/*.profraw -o "$profiles/all.profdata"
llvm-cov-14 report -instr-profile="$profiles/all.profdata" "${objects[@]}" >"$profiles/report.txt" 2>/dev/null
# Columns of a file's row: name, regions, missed, cover, functions, missed, executed, lines, missed.
# Paths are relative to the source tree, as ccache's base directory makes them.
awk '
  $1 ~ /^(src|include|tools)\// && NF >= 10 {
    folder = $1; sub(/\/[^\/]*$/, "", folder)
    lines[folder] += $8; missed[folder] += $9
  }
  END {
    printf "%-28s %8s %8s %8s\n", "folder", "lines", "missed", "cover"
    for (f in lines)
      printf "%-28s %8d %8d %7.1f%%\n", f, lines[f], missed[f], 100 * (lines[f] - missed[f]) / lines[f] | "sort"
  }' "$profiles/report.txt"
echo "per file: $profiles/report.txt; the lines themselves:" \
  "llvm-cov-14 show -instr-profile=$profiles/all.profdata ${objects[*]} src/<folder>"
