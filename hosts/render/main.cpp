// ostrel-render: draws a draughts position on the 3D board without a window and writes it as a
// PNG file.
//
//   ostrel-render [options] [FEN]      (ostrel-render --help lists the options)

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "GameOptions.h"
#include "GameRender.h"
#include "PngWriter.h"
#include "Position.h"
#include "ostrel/ostrel.h"

int main(int argc, char** argv) {
  const std::string program = argc > 0 ? argv[0] : "ostrel-render";
  std::string error;
  std::vector<std::string> args(argv + 1, argv + argc);
  render::GameOptions game;
  std::optional<render::Options> options;
  if (render::takeGameArguments(args, game, error)) options = render::parseArguments(args, error);
  if (options && !render::checkGameOptions(*options, game, error)) options.reset();
  if (!options) {
    std::fprintf(stderr, "%s: %s\n\n%s%s", program.c_str(), error.c_str(),
                 render::usage(program).c_str(), render::gameUsage(program).c_str());
    return 2;
  }
  if (options->help) {
    std::printf("%s%s", render::usage(program).c_str(), render::gameUsage(program).c_str());
    return 0;
  }
  std::optional<ostrel::draughts::PdnGame> pdn;
  if (!game.pdn.empty()) {
    pdn = render::loadGame(game, error);
    if (!pdn) {
      std::fprintf(stderr, "%s: %s\n", program.c_str(), error.c_str());
      return 1;
    }
  }

  ostrel::HeadlessOptions headless;
  headless.pixelWidth = options->width;
  headless.pixelHeight = options->height;
  headless.maxAnisotropy = options->anisotropy;
  ostrel::HeadlessPlatform platform(headless);
  ostrel::ctlBoard board(platform);

  if (options->elevation) board.rotationHorizontalAxis(*options->elevation);
  if (options->azimuth) board.rotationVerticalAxis(*options->azimuth);
  board.viewingDistance(options->distance);
  for (int16_t slot = 0; slot < 50; ++slot) {
    board.field(slot, options->position[static_cast<size_t>(slot)]);
  }
  board.drawBoard();

  const auto started =
      board.init(false, options->antiAliasing, options->shadows ? 1 : 0, options->modelFolder);
  for (const std::string& message : platform.messages()) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), message.c_str());
  }
  // A model or image that did not load leaves its part out of the picture: no diagram then.
  if (!started || !*started || !platform.messages().empty()) {
    const std::string base =
        options->modelFolder.empty() ? platform.AppPath() : options->modelFolder;
    std::fprintf(stderr, "%s: the graphics did not start; see %s/directxlog.txt\n", program.c_str(),
                 base.c_str());
    return 1;
  }

  if (pdn) return render::renderGame(program, board, platform, *options, game, *pdn);

  if (!options->lastMove.empty()) {
    board.highlightLastMove(true);
    board.setHighLightField(*render::lastField(options->lastMove));
  }
  if (!options->marks.empty()) board.setHLfields(options->marks);
  board.render();

  if (!render::writePng(options->out, platform.windowImage(), error)) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), error.c_str());
    return 1;
  }
  std::printf("%s: wrote %s (%d x %d)\n", program.c_str(), options->out.c_str(), options->width,
              options->height);

  if (!options->emf.empty()) {
    // The control's dump reports nothing: a file that is new, or newer than before, is the sign.
    std::error_code ec;
    const auto before = std::filesystem::last_write_time(options->emf, ec);
    const bool existed = !ec;
    board.screenDump(options->emf);
    const auto after = std::filesystem::last_write_time(options->emf, ec);
    if (ec || (existed && after == before)) {
      std::fprintf(stderr, "%s: cannot write %s\n", program.c_str(), options->emf.c_str());
      return 1;
    }
    std::printf("%s: wrote %s\n", program.c_str(), options->emf.c_str());
  }
  return 0;
}
