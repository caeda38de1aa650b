#!/usr/bin/env bash
# The long fuzzing run of the draughts kit's readers (not part of test.sh): builds the fuzzers
# with clang-14 and runs each for a number of executions (default 1,000,000), starting from the
# test PDN files and a few FEN texts. Prints libFuzzer's closing figures.
#
#   bash scripts/fuzz-draughts.sh [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-1000000}

CC=clang-14 CXX=clang++-14 cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DOSTREL_FUZZ=ON -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=OFF >/dev/null
cmake --build build-fuzz -j "$(nproc)" --target fuzz_fen fuzz_pdn

run() {
  local name=$1 seeds=$2 maxlen=$3
  local corpus="build-fuzz/corpus/$name"
  mkdir -p "$corpus"
  echo "== $name: $runs runs"
  "build-fuzz/tests/fuzz/$name" -runs="$runs" -max_len="$maxlen" -rss_limit_mb=4096 \
    -print_final_stats=1 "$corpus" "$seeds" 2>&1 | grep -E "^(Done|stat::number_of_executed_units|stat::average_exec_per_sec|stat::peak_rss_mb)|ERROR|SUMMARY"
}
run fuzz_fen tests/fuzz/draughts/corpus-fen 256
run fuzz_pdn tests/fuzz/draughts/corpus-pdn 1024
