#!/usr/bin/env bash
# The long random call-order run under AddressSanitizer and UndefinedBehaviorSanitizer, apart from
# the test suite (which runs a short one). Usage:
#   bash scripts/call-order.sh [seeds] [operations per seed] [first seed]
# Defaults: 40 seeds of 5000 operations from seed 100. Prints the figures of the run and every
# finding; a sanitizer report ends the run with it.
set -euo pipefail
cd "$(dirname "$0")/.."

seeds=${1:-40}
operations=${2:-5000}
first=${3:-100}

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DOSTREL_SANITIZE=ON \
  -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=ON >/dev/null
cmake --build build-asan -j "$(nproc)" --target test_hardening_gl

OSTREL_CALL_ORDER_SEEDS=$seeds OSTREL_CALL_ORDER_OPERATIONS=$operations \
  OSTREL_CALL_ORDER_FIRST_SEED=$first ASAN_OPTIONS=detect_leaks=1 \
  build-asan/tests/test_hardening_gl --gtest_filter='CallOrder.*'
