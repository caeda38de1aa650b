#!/usr/bin/env bash
# The long fuzzing run of the .x readers, apart from the test suite: each target goes on until it
# has made RUNS executions (a million unless given), from the seed corpora of every exporter
# shape, and the figures of each run are printed at the end.
#
#   scripts/fuzz-long.sh [RUNS] [TARGET...]      e.g. scripts/fuzz-long.sh 1000000 fuzz_xfile_text
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-1000000}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=(fuzz_xfile_text fuzz_xfile_binary fuzz_xfile_compressed)
fi

CC=clang-14 CXX=clang++-14 cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DOSTREL_FUZZ=ON -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=OFF
cmake --build build-fuzz -j "$(nproc)" --target write_x_seeds "${targets[@]}"
build-fuzz/tests/fuzz/write_x_seeds build-fuzz/corpus

mkdir -p build-fuzz/long
for target in "${targets[@]}"; do
  log="build-fuzz/long/$target.log"
  echo "-- $target: $runs runs, log in $log"
  build-fuzz/tests/fuzz/"$target" -runs="$runs" -timeout=10 -rss_limit_mb=4096 \
    -print_final_stats=1 "build-fuzz/corpus/$target" >"$log" 2>&1 || {
    echo "$target FAILED; see $log"
    tail -n 40 "$log"
    exit 1
  }
  grep -E "^Done|stat::number_of_executed_units|stat::average_exec_per_sec|stat::peak_rss_mb" "$log"
done
