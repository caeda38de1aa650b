# Debian packages the library links (installed by scripts/setup.sh).
find_package(PkgConfig REQUIRED)
pkg_check_modules(EPOXY REQUIRED IMPORTED_TARGET epoxy)
pkg_check_modules(EGL REQUIRED IMPORTED_TARGET egl)
pkg_check_modules(STB REQUIRED IMPORTED_TARGET stb)
find_package(assimp CONFIG REQUIRED)
find_package(ZLIB REQUIRED)

# One interface target, so that tests that reach into internals link the same set.
add_library(ostrel_deps INTERFACE)
target_link_libraries(ostrel_deps INTERFACE PkgConfig::EPOXY PkgConfig::EGL PkgConfig::STB assimp::assimp ZLIB::ZLIB)
