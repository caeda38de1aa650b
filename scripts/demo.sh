#!/usr/bin/env bash
# The main job: set-up, build, and the demo: a game of draughts on the 3D board.
#   bash scripts/demo.sh                 a window where a display exists, else the same game played
#                                        headless into PNG pictures under out/demo/
#   bash scripts/demo.sh [demo options]  passed on to ostrel-demo (see --help): --headless,
#                                        --plies N, --out DIR, --seed S
# It also draws the starting position with the command-line renderer: out/start.png (from above)
# and out/start-slanted.png (from an angle).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"

render=build/hosts/render/ostrel-render
demo=build/hosts/demo/ostrel-demo
mkdir -p out
if [ -x "$render" ]; then
  "$render" --out out/start.png
  "$render" --elevation 0.85 --distance 25 --out out/start-slanted.png
fi
if [ ! -x "$demo" ]; then
  echo "Built the library and its tests; the demo program is not built yet."
  exit 0
fi
# Without DISPLAY or WAYLAND_DISPLAY the demo says so and plays headless by itself.
"$demo" "$@"
