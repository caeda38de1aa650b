#!/usr/bin/env bash
# The board in a web page: installs the WebAssembly toolchain and a browser, builds Assimp's .x
# importer and zlib for WebAssembly from Debian's sources (web/deps; once, kept in
# build-web/deps), builds the module and runs the browser tests.
#
#   scripts/web.sh            set up, build and test
#   scripts/web.sh serve      set up, build, and serve the page on http://localhost:8080/
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
out=$root/build-web
deps=$out/deps
prefix=$deps/prefix
export NODE_PATH=/usr/share/nodejs
[ -f /tmp/ccache-env.sh ] && . /tmp/ccache-env.sh
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

step() { echo "== $1 ($(date +%s))"; }
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi

step "packages"
bash "$root/scripts/setup.sh"

# The libraries built for WebAssembly are kept until their recipe changes.
recipe=$(sha1sum "$root/web/deps/CMakeLists.txt" | cut -c1-12)
if [ "$(cat "$prefix/recipe" 2>/dev/null)" != "$recipe" ]; then
  step "sources"
  # Source packages come from the same archive as the binary ones.
  if ! apt-get source --print-uris -qq zlib >/dev/null 2>&1; then
    list=/etc/apt/sources.list.d/ostrel-web-src.sources
    if [ -f /etc/apt/sources.list.d/debian.sources ]; then
      sed -e 's/^Types: deb$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources |
        "${sudo_cmd[@]}" tee "$list" >/dev/null
    else
      list=/etc/apt/sources.list.d/ostrel-web-src.list
      sed -n 's/^deb /deb-src /p' /etc/apt/sources.list | "${sudo_cmd[@]}" tee "$list" >/dev/null
    fi
    "${sudo_cmd[@]}" apt-get update -qq
  fi
  rm -rf "$deps" && mkdir -p "$deps/src"
  (cd "$deps/src" && apt-get source -qq assimp zlib >/dev/null 2>&1)
  zsrc=$(ls -d "$deps"/src/zlib-*/)
  asrc=$(ls -d "$deps"/src/assimp-*/)

  step "zlib and Assimp's .x importer for WebAssembly"
  emcmake cmake -S "$root/web/deps" -B "$deps/build" -DCMAKE_BUILD_TYPE=Release "${launcher[@]}" \
    -DZLIB_SOURCE="$zsrc" -DASSIMP_SOURCE="$asrc" -DCMAKE_INSTALL_PREFIX="$prefix" >"$deps/configure.log"
  cmake --build "$deps/build" -j "$(nproc)" >"$deps/build.log" || { tail -n 30 "$deps/build.log"; exit 1; }
  cmake --install "$deps/build" >/dev/null
  echo "$recipe" >"$prefix/recipe"
fi

step "playwright-core"
# The last release that runs on Debian 12's Node.js 18.
playwright=1.61.1
if ! grep -qs "\"version\": \"$playwright\"" "$out/node_modules/playwright-core/package.json"; then
  (cd "$out" && npm install --no-save --no-audit --no-fund --silent "playwright-core@$playwright" >/dev/null)
fi

step "module"
emcmake cmake -S . -B "$out/module" -DCMAKE_BUILD_TYPE=Release "${launcher[@]}" \
  -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=OFF \
  -DOSTREL_WEB_PREFIX="$prefix" >"$out/configure.log"
cmake --build "$out/module" -j "$(nproc)" --target ostrel_web
site=$out/module/web

step "download size"
total=0 packed=0
for f in index.html ostrel-board.js ostrel.js ostrel.wasm ostrel.data; do
  size=$(stat -c %s "$site/$f") gz=$(gzip -9c "$site/$f" | wc -c)
  printf '  %-16s %9d bytes %9d gzip\n' "$f" "$size" "$gz"
  total=$((total + size)) packed=$((packed + gz))
done
printf '  %-16s %9d bytes %9d gzip\n' "the page" "$total" "$packed"

if [ "${1:-}" = "serve" ]; then
  step "serving $site on http://localhost:8080/"
  exec node "$root/web/tests/serve.js" "$site" 8080
fi

step "browser tests"
NODE_PATH=$out/node_modules OSTREL_SITE=$site node --test "$root/web/tests/"
step "done"
