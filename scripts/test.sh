#!/usr/bin/env bash
# The whole test suite: set-up, format check, build and tests, the installed package seen by a
# consumer project, the sanitizer build, the web page in a browser, and a bounded fuzzing run.
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
# Hosts without CMake find the package through its pkg-config files.
pc_dir=$(dirname "$(find build/stage -name ostrel.pc | head -n 1)")
export PKG_CONFIG_PATH="$root/$pc_dir"
# The board in real windows under an X server: a drag from 32 to 28 and a screenshot of it.
xvfb=(xvfb-run -a -s "-screen 0 1024x768x24")
if [ -f "$pc_dir/ostrel-sdl.pc" ]; then
  rm -rf build/consumer-sdl
  cmake -S tests/consumer-sdl -B build/consumer-sdl -G Ninja -DCMAKE_PREFIX_PATH="$root/build/stage"
  cmake --build build/consumer-sdl
  (cd build/consumer-sdl && "${xvfb[@]}" ./consumer-sdl && "${xvfb[@]}" ./minimal-platform)
  c++ tests/consumer-sdl/main.cpp $(pkg-config --cflags --libs ostrel-sdl x11) \
    -o build/consumer-sdl/consumer-sdl-pc
  c++ tests/consumer-sdl/minimal_platform.cpp $(pkg-config --cflags --libs ostrel sdl2 epoxy) \
    -o build/consumer-sdl/minimal-platform-pc
  (cd build/consumer-sdl && "${xvfb[@]}" ./consumer-sdl-pc && "${xvfb[@]}" ./minimal-platform-pc)
else
  echo "-- consumer-sdl skipped: the component sdl was not built"
fi
if [ -f "$pc_dir/ostrel-qt.pc" ]; then
  rm -rf build/consumer-qt
  cmake -S tests/consumer-qt -B build/consumer-qt -G Ninja -DCMAKE_PREFIX_PATH="$root/build/stage"
  cmake --build build/consumer-qt
  (cd build/consumer-qt && "${xvfb[@]}" ./consumer-qt)
  # The same at display scale 2: the picture at device pixels, the drag where the hand goes.
  (cd build/consumer-qt && QT_SCALE_FACTOR=2 xvfb-run -a -s "-screen 0 1600x1200x24" ./consumer-qt)
  c++ tests/consumer-qt/main.cpp $(pkg-config --cflags --libs ostrel-qt Qt6Test) \
    -o build/consumer-qt/consumer-qt-pc
  (cd build/consumer-qt && "${xvfb[@]}" ./consumer-qt-pc)
else
  echo "-- consumer-qt skipped: the component qt was not built"
fi

echo "== sanitizers (address, undefined)"
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DOSTREL_SANITIZE=ON \
  -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=ON
cmake --build build-asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 ctest --test-dir build-asan --output-on-failure -j "$jobs"

# The board in a web page: the WebAssembly module and its browser tests in headless chromium.
echo "== web page"
bash scripts/web.sh

echo "== fuzzing"
CC=clang-14 CXX=clang++-14 cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DOSTREL_FUZZ=ON -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=OFF
cmake --build build-fuzz -j "$jobs"
build-fuzz/tests/fuzz/write_x_seeds build-fuzz/corpus
for fuzzer in build-fuzz/tests/fuzz/fuzz_*; do
  [ -x "$fuzzer" ] || continue
  corpus="build-fuzz/corpus/$(basename "$fuzzer")"
  mkdir -p "$corpus"
  echo "-- $(basename "$fuzzer")"
  "$fuzzer" -max_total_time="${OSTREL_FUZZ_SECONDS:-30}" -rss_limit_mb=4096 "$corpus" 2>&1 | tail -n 3
done

echo "== all tests passed"
