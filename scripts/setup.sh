#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running ostrel need.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config clang-format
  libepoxy-dev libegl-dev libegl-mesa0 libgl1-mesa-dri
  libassimp-dev zlib1g-dev libstb-dev fonts-dejavu-core libsdl2-dev libx11-dev
  qt6-base-dev libqt6opengl6-dev xvfb xauth
  libgtest-dev libbenchmark-dev clang-14 libclang-rt-14-dev
  libpng-dev libavformat-dev libavcodec-dev libswscale-dev libavutil-dev
  # The web page (scripts/web.sh): the WebAssembly compiler, a browser, Assimp's and zlib's sources.
  emscripten node-acorn nodejs chromium libutfcpp-dev dpkg-dev
)
# Debian's nodejs comes without npm, which fetches playwright-core for the browser tests.
command -v npm >/dev/null || packages+=(npm)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
