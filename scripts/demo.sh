#!/usr/bin/env bash
# The main job: set-up, build, and pictures of the board drawn by the library.
#   bash scripts/demo.sh                 the starting position, from above and from an angle
#   bash scripts/demo.sh [renderer options and FEN]   that position instead (see --help)
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"
render=build/hosts/render/ostrel-render
if [ -x "$render" ]; then
  mkdir -p out
  if [ $# -gt 0 ]; then
    "$render" --out out/position.png "$@"
    echo "The picture is in $(pwd)/out/position.png"
  else
    "$render" --out out/start.png
    "$render" --elevation 0.85 --distance 25 --out out/start-slanted.png
    echo "The starting position is in $(pwd)/out/start.png (from above)"
    echo "and in $(pwd)/out/start-slanted.png (from an angle)."
  fi
else
  echo "Built the library and its tests. No board picture can be drawn yet."
fi
