#!/usr/bin/env bash
# The whole test suite: set-up, format check, build and tests, the installed package seen by a
# consumer project, the sanitizer build, and a bounded fuzzing run.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
jobs=$(nproc)

bash scripts/setup.sh

echo "== format"
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
# Includes of the library name a layer root ("graphics/Frame.h"); a relative climb would pass by
# the per-layer include roots that keep the dependencies one-way.
if git grep -n '#include "\.\./' -- src include; then
  echo "library includes must not climb out of their folder" >&2
  exit 1
fi

echo "== build and test"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"

echo "== installed package"
rm -rf build/stage build/consumer
cmake --install build --prefix build/stage >/dev/null
cmake -S tests/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$root/build/stage"
cmake --build build/consumer
build/consumer/consumer

echo "== sanitizers (address, undefined)"
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DOSTREL_SANITIZE=ON \
  -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=ON
cmake --build build-asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 ctest --test-dir build-asan --output-on-failure -j "$jobs"

echo "== fuzzing"
CC=clang-14 CXX=clang++-14 cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DOSTREL_FUZZ=ON -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=OFF
cmake --build build-fuzz -j "$jobs"
for fuzzer in build-fuzz/tests/fuzz/fuzz_*; do
  [ -x "$fuzzer" ] || continue
  corpus="build-fuzz/corpus/$(basename "$fuzzer")"
  mkdir -p "$corpus"
  echo "-- $(basename "$fuzzer")"
  "$fuzzer" -max_total_time="${OSTREL_FUZZ_SECONDS:-30}" -rss_limit_mb=4096 "$corpus" 2>&1 | tail -n 3
done

echo "== all tests passed"
