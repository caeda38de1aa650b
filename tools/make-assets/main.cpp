// make-assets: generates the board, piece, shadow and marker models and their images.
//
//   make-assets [output directory]
//
// Without an argument it writes into the repository's assets/models.

#include <cstdio>
#include <filesystem>
#include <string>

#include "assets.h"

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : OSTREL_ASSET_DIR;
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (ec) {
    std::fprintf(stderr, "make-assets: cannot create %s: %s\n", dir.c_str(), ec.message().c_str());
    return 1;
  }
  struct Step {
    const char* what;
    bool (*run)(const std::string&);
  };
  const Step steps[] = {{"board", makeassets::writeBoard},
                        {"pieces", makeassets::writePieces},
                        {"shadow", makeassets::writeShadow},
                        {"markers", makeassets::writeMarkers}};
  for (const Step& step : steps) {
    std::printf("make-assets: %s\n", step.what);
    if (!step.run(dir)) {
      std::fprintf(stderr, "make-assets: writing the %s into %s failed\n", step.what, dir.c_str());
      return 1;
    }
  }
  std::printf("make-assets: done, files in %s\n", dir.c_str());
  return 0;
}
