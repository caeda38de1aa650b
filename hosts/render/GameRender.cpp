#include "GameRender.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "Film.h"
#include "OutputFile.h"
#include "PngWriter.h"
#include "Progress.h"
#include "VideoWriter.h"

namespace render {

namespace draughts = ostrel::draughts;

namespace {

constexpr int kInternationalDraughts = 20;
constexpr std::uintmax_t kMaxPdnBytes = 256u << 20;

const Position& positionAt(const GameLine& line, size_t ply) {
  return ply == 0 ? line.start : line.plies[ply - 1].after;
}
int16_t lastFieldAt(const GameLine& line, size_t ply) {
  return ply == 0 ? 0 : line.lastFields[ply - 1];
}

std::string plyFileName(size_t ply, size_t last) {
  const int digits = std::max<int>(3, static_cast<int>(std::to_string(last).size()));
  char name[32];
  std::snprintf(name, sizeof name, "ply-%0*zu.png", digits, ply);
  return name;
}

}  // namespace

GameLine lineOf(const draughts::PdnGame& game, size_t plies) {
  GameLine line;
  draughts::Position position = game.start;
  line.start = codesOf(position);
  for (size_t i = 0; i < plies && i < game.moves.size(); ++i) {
    const draughts::Move& move = game.moves[i].move;
    position = draughts::play(position, move);
    line.plies.push_back({draughts::controlText(move), codesOf(position)});
    line.lastFields.push_back(static_cast<int16_t>(move.to()));
  }
  return line;
}

bool writeAllPlies(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform,
                   const GameLine& line, const std::string& dir, std::string& error) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (ec || !std::filesystem::is_directory(dir)) {
    error = cannotWrite(dir, ec ? ec.message() : "not a folder");
    return false;
  }
  const size_t last = line.plies.size();
  Progress progress(stderr, last);
  for (size_t ply = 0; ply <= last; ++ply) {
    const ostrel::Image still =
        drawStill(board, platform, positionAt(line, ply), lastFieldAt(line, ply));
    if (!writePng((std::filesystem::path(dir) / plyFileName(ply, last)).string(), still, error)) {
      return false;
    }
    progress.update(ply);
  }
  return true;
}

std::optional<int64_t> writeFilm(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform,
                                 const GameLine& line, const std::string& path,
                                 const FilmSettings& settings, std::string& error) {
  // A GIF's palette comes from stills spread over the game: the start, the end and between.
  std::vector<ostrel::Image> samples;
  const auto format = videoFormatOf(path);
  if (!format) {
    error = cannotWrite(path, "a film is a .mp4, .webm or .gif file");
    return std::nullopt;
  }
  if (*format == VideoFormat::Gif) {
    const size_t last = line.plies.size();
    for (size_t ply : {size_t{0}, last / 3, last * 2 / 3, last}) {
      samples.push_back(drawStill(board, platform, positionAt(line, ply), lastFieldAt(line, ply)));
    }
  }
  const ostrel::Image size = platform.windowImage();
  auto writer =
      VideoWriter::open(path, *format, size.width, size.height, settings.fps, samples, error);
  if (!writer) return std::nullopt;
  Progress progress(stderr, line.plies.size());
  const bool played = playFilm(
      board, platform, line.start, line.plies, settings,
      [&](const ostrel::Image& picture, int frames) {
        return writer->addFrame(picture, frames, error);
      },
      [&](size_t plies) { progress.update(plies); });
  if (!played || !writer->finish(error)) return std::nullopt;
  return writer->frameCount();
}

std::optional<draughts::PdnGame> loadGame(const GameOptions& options, std::string& error) {
  std::error_code ec;
  const auto bytes = std::filesystem::file_size(options.pdn, ec);
  std::ifstream in(options.pdn, std::ios::binary);
  if (ec || !in) {
    error = "cannot read " + options.pdn + (ec ? ": " + ec.message() : "");
    return std::nullopt;
  }
  if (bytes > kMaxPdnBytes) {
    error = options.pdn + " is too large for a PDN file (" + std::to_string(bytes) + " bytes)";
    return std::nullopt;
  }
  std::stringstream text;
  text << in.rdbuf();
  draughts::PdnFile file = draughts::readPdn(text.str());
  if (file.games.empty()) {
    error = options.pdn + " holds no game";
    return std::nullopt;
  }
  if (static_cast<size_t>(options.game) > file.games.size()) {
    error = options.pdn + " holds " + std::to_string(file.games.size()) +
            (file.games.size() == 1 ? " game" : " games") + ": there is no game " +
            std::to_string(options.game);
    return std::nullopt;
  }
  draughts::PdnGame game = std::move(file.games[static_cast<size_t>(options.game) - 1]);
  const std::string where = options.pdn + ", game " + std::to_string(options.game);
  const std::string type = game.tag("GameType");
  if (!type.empty() && std::atoi(type.c_str()) != kInternationalDraughts) {
    error = where + ": GameType " + type + " is not international draughts (20)";
    return std::nullopt;
  }
  const std::string fen = game.tag("FEN");
  draughts::TextError fenError;
  if (!fen.empty() && !draughts::parseFen(fen, &fenError)) {
    error = where + ": the FEN tag is no position: " + fenError.message;
    return std::nullopt;
  }
  return game;
}

int renderGame(const std::string& program, ostrel::ctlBoard& board,
               ostrel::HeadlessPlatform& platform, const Options& options, const GameOptions& game,
               const draughts::PdnGame& pdn) {
  const size_t read = pdn.moves.size();
  const size_t wanted = game.ply.value_or(read);
  // The game broke off before what was asked: what came before the fault is drawn.
  const bool stoppedShort = pdn.error && (!game.ply || wanted > read);
  const std::string where = game.pdn + ", game " + std::to_string(game.game);
  if (wanted > read && !pdn.error) {
    std::fprintf(stderr, "%s: %s has %zu plies: there is no ply %zu\n", program.c_str(),
                 where.c_str(), read, wanted);
    return 1;
  }
  const GameLine line = lineOf(pdn, wanted);
  if (!options.marks.empty()) board.setHLfields(options.marks);

  std::string error;
  bool ok = true;
  if (!game.allPlies.empty()) {
    ok = writeAllPlies(board, platform, line, game.allPlies, error);
    const size_t last = line.plies.size();
    if (ok) {
      std::printf("%s: wrote %zu pictures to %s (%s to %s, %d x %d)\n", program.c_str(), last + 1,
                  game.allPlies.c_str(), plyFileName(0, last).c_str(),
                  plyFileName(last, last).c_str(), options.width, options.height);
    }
  }
  if (ok && !game.video.empty()) {
    FilmSettings settings;
    settings.fps = game.fps;
    settings.pauseSeconds = game.pauseSeconds;
    settings.intro = game.intro;
    const auto frames = writeFilm(board, platform, line, game.video, settings, error);
    ok = frames.has_value();
    if (ok) {
      std::printf("%s: wrote %s (%d x %d, %d fps, %lld frames, %.1f s)\n", program.c_str(),
                  game.video.c_str(), options.width, options.height, game.fps,
                  static_cast<long long>(*frames), static_cast<double>(*frames) / game.fps);
    }
  }
  if (ok && game.allPlies.empty() && game.video.empty()) {
    const size_t ply = line.plies.size();
    ok = writePng(options.out,
                  drawStill(board, platform, positionAt(line, ply), lastFieldAt(line, ply)), error);
    if (ok) {
      std::printf("%s: wrote %s (%d x %d), %s after ply %zu\n", program.c_str(),
                  options.out.c_str(), options.width, options.height, where.c_str(), ply);
    }
  }
  if (!ok) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), error.c_str());
    return 1;
  }
  if (stoppedShort) {
    std::fprintf(stderr, "%s: %s stops after ply %zu: %s\n", program.c_str(), where.c_str(), read,
                 pdn.error->describe().c_str());
    return 1;
  }
  return 0;
}

}  // namespace render
