#!/usr/bin/env bash
# The board in a web page: installs the WebAssembly toolchain and a browser, builds Assimp's .x
# importer and zlib for WebAssembly from Debian's sources (once; kept in build-web/deps), builds
# the module and runs the browser tests.
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
packages=(emscripten node-acorn nodejs chromium libutfcpp-dev libstb-dev dpkg-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
command -v npm >/dev/null || { echo "web.sh: npm is needed for playwright-core" >&2; exit 1; }

mkdir -p "$deps"
if [ ! -f "$prefix/lib/libassimp.a" ]; then
  step "sources"
  # Source packages come from the same archive as the binary ones.
  if ! apt-get source --print-uris -qq zlib >/dev/null 2>&1; then
    list=/etc/apt/sources.list.d/ostrel-web-src.sources
    sed -e 's/^Types: deb$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources |
      "${sudo_cmd[@]}" tee "$list" >/dev/null
    "${sudo_cmd[@]}" apt-get update -qq
  fi
  rm -rf "$deps/src" && mkdir -p "$deps/src"
  (cd "$deps/src" && apt-get source -qq assimp zlib >/dev/null)
  zsrc=$(ls -d "$deps"/src/zlib-*/)
  asrc=$(ls -d "$deps"/src/assimp-*/)

  step "zlib and minizip for WebAssembly"
  mkdir -p "$deps/zlib" "$prefix/include/minizip" "$prefix/lib"
  cp "$zsrc/zconf.h.in" "$deps/zlib/zconf.h"
  for f in adler32 crc32 deflate inffast inflate inftrees trees zutil compress uncompr; do
    emcc -O2 -I"$deps/zlib" -c "$zsrc/$f.c" -o "$deps/zlib/$f.o"
  done
  for f in ioapi unzip; do
    emcc -O2 -I"$deps/zlib" -I"$zsrc" -DIOAPI_NO_64 -c "$zsrc/contrib/minizip/$f.c" -o "$deps/zlib/mz_$f.o"
  done
  emar rcs "$prefix/lib/libz.a" "$deps"/zlib/[!m]*.o
  emar rcs "$prefix/lib/libminizip.a" "$deps"/zlib/mz_*.o
  cp "$zsrc/zlib.h" "$deps/zlib/zconf.h" "$prefix/include/"
  cp "$zsrc"/contrib/minizip/{unzip.h,ioapi.h,crypt.h} "$prefix/include/minizip/"
  mkdir -p "$prefix/lib/pkgconfig"
  printf 'Name: minizip\nDescription: minizip\nVersion: 1\nLibs: -L%s/lib -lminizip -lz\nCflags: -I%s/include/minizip\n' \
    "$prefix" "$prefix" >"$prefix/lib/pkgconfig/minizip.pc"

  step "Assimp (.x importer) for WebAssembly"
  # Debian's patches link the system's Draco, which a WebAssembly build has no use for.
  sed -i '/find_package(draco CONFIG REQUIRED)/d; /target_link_libraries(assimp ${DRACO_LIBRARIES})/d' \
    "$asrc/code/CMakeLists.txt"
  PKG_CONFIG_LIBDIR=$prefix/lib/pkgconfig PKG_CONFIG_PATH= emcmake cmake -S "$asrc" -B "$deps/assimp" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" "${launcher[@]}" \
    -DBUILD_SHARED_LIBS=OFF -DASSIMP_BUILD_ALL_IMPORTERS_BY_DEFAULT=OFF -DASSIMP_BUILD_X_IMPORTER=ON \
    -DASSIMP_BUILD_ALL_EXPORTERS_BY_DEFAULT=OFF -DASSIMP_NO_EXPORT=ON -DASSIMP_BUILD_TESTS=OFF \
    -DASSIMP_BUILD_ASSIMP_TOOLS=OFF -DASSIMP_BUILD_SAMPLES=OFF -DASSIMP_BUILD_ZLIB=OFF \
    -DASSIMP_WARNINGS_AS_ERRORS=OFF -DASSIMP_IGNORE_GIT_HASH=ON \
    -DZLIB_LIBRARY="$prefix/lib/libz.a" -DZLIB_INCLUDE_DIR="$prefix/include" \
    "-DCMAKE_CXX_FLAGS=-I/usr/include/utf8cpp -I/usr/include/stb" >"$deps/assimp-configure.log"
  cmake --build "$deps/assimp" -j2 --target assimp >"$deps/assimp-build.log"
  cmake --install "$deps/assimp" --component libassimp-dev >/dev/null ||
    cmake --install "$deps/assimp" >/dev/null
fi

step "playwright-core"
if [ ! -d "$out/node_modules/playwright-core" ]; then
  (cd "$out" && npm install --no-save --no-audit --no-fund --silent playwright-core >/dev/null)
fi

step "module"
emcmake cmake -S . -B "$out/module" -DCMAKE_BUILD_TYPE=Release "${launcher[@]}" \
  -DOSTREL_BUILD_TESTS=OFF -DOSTREL_BUILD_BENCH=OFF -DOSTREL_BUILD_HOSTS=OFF \
  -DOSTREL_WEB_PREFIX="$prefix" >"$out/configure.log"
cmake --build "$out/module" -j2 --target ostrel_web
site=$out/module/web

if [ "${1:-}" = "serve" ]; then
  step "serving $site on http://localhost:8080/"
  exec node "$root/web/tests/serve.js" "$site" 8080
fi

step "browser tests"
NODE_PATH=$out/node_modules OSTREL_SITE=$site node --test "$root/web/tests/"
step "done"
