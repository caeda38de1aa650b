#!/usr/bin/env bash
# The main job: set-up, build, and what the library can show so far.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"
if [ -x build/hosts/render/ostrel-render ]; then
  mkdir -p out
  build/hosts/render/ostrel-render --out out/start.png "$@"
  echo "The starting position is in $(pwd)/out/start.png"
else
  echo "Built the library and its tests. No board picture can be drawn yet."
fi
