# The libraries of the WebAssembly build: OpenGL ES 3.0 of the browser's WebGL 2, stb's headers,
# and Assimp (the .x importer only) with zlib and minizip built for WebAssembly by scripts/web.sh
# under OSTREL_WEB_PREFIX.
set(OSTREL_WEB_PREFIX "" CACHE PATH "where scripts/web.sh installed Assimp and zlib for WebAssembly")
if(NOT EXISTS "${OSTREL_WEB_PREFIX}/lib/libassimp.a")
  message(FATAL_ERROR "no WebAssembly Assimp under OSTREL_WEB_PREFIX='${OSTREL_WEB_PREFIX}'; "
                      "scripts/web.sh builds it")
endif()

add_library(ostrel_deps INTERFACE)
target_include_directories(ostrel_deps SYSTEM INTERFACE ${OSTREL_WEB_PREFIX}/include /usr/include/stb)
target_link_libraries(ostrel_deps INTERFACE ${OSTREL_WEB_PREFIX}/lib/libassimp.a
  ${OSTREL_WEB_PREFIX}/lib/libz.a)
# The device reports failures as C++ exceptions: catching them must work in WebAssembly too.
target_compile_options(ostrel_deps INTERFACE -fexceptions)
target_link_options(ostrel_deps INTERFACE -fexceptions -sMIN_WEBGL_VERSION=2 -sMAX_WEBGL_VERSION=2)
