#include "Options.h"

#include <charconv>
#include <limits>

namespace demo {

namespace {

// A whole decimal number in [low, high], all of the text.
template <typename T>
std::optional<T> number(const std::string& text, T low, T high) {
  T value{};
  const char* end = text.data() + text.size();
  auto [stop, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || stop != end || value < low || value > high) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& error) {
  Options options;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& a = arguments[i];
    auto value = [&]() -> const std::string* {
      if (i + 1 >= arguments.size()) {
        error = a + " needs a value";
        return nullptr;
      }
      return &arguments[++i];
    };
    if (a == "--help" || a == "-h") {
      options.help = true;
    } else if (a == "--headless") {
      options.headless = true;
    } else if (a == "--plies") {
      const std::string* v = value();
      if (!v) return std::nullopt;
      auto n = number<int>(*v, 0, 10000);
      if (!n) {
        error = "--plies takes a whole number from 0 to 10000, not \"" + *v + "\"";
        return std::nullopt;
      }
      options.plies = *n;
    } else if (a == "--out") {
      const std::string* v = value();
      if (!v) return std::nullopt;
      if (v->empty()) {
        error = "--out needs a folder";
        return std::nullopt;
      }
      options.out = *v;
    } else if (a == "--seed") {
      const std::string* v = value();
      if (!v) return std::nullopt;
      auto n = number<uint32_t>(*v, 0, std::numeric_limits<uint32_t>::max());
      if (!n) {
        error = "--seed takes a whole number from 0 to 4294967295, not \"" + *v + "\"";
        return std::nullopt;
      }
      options.seed = *n;
    } else if (a == "--pdn") {
      const std::string* v = value();
      if (!v) return std::nullopt;
      if (v->empty()) {
        error = "--pdn needs a file";
        return std::nullopt;
      }
      options.pdn = *v;
    } else if (a == "--game") {
      const std::string* v = value();
      if (!v) return std::nullopt;
      auto n = number<int>(*v, 1, 1000000);
      if (!n) {
        error = "--game takes a whole number from 1, not \"" + *v + "\"";
        return std::nullopt;
      }
      options.game = *n;
    } else {
      error = "unknown argument \"" + a + "\"";
      return std::nullopt;
    }
  }
  return options;
}

std::string usage(const std::string& program) {
  return "usage: " + program +
         " [--headless] [--plies N] [--out DIR] [--seed S] [--pdn FILE [--game N]]\n"
         "\n"
         "A game of international draughts on the 3D board. You play white: drag a piece with\n"
         "the left button to a field where it may go; the right button turns the board; N starts\n"
         "a new game. Without a display (or with --headless) the opponent plays both sides and\n"
         "every ply is written as a PNG picture.\n"
         "\n"
         "With --pdn the game of a PDN file is shown at its start: Right plays its next move,\n"
         "Left takes one back, and a drag from any ply plays on against the opponent. When a\n"
         "drop fits captures that take different pieces, the fields where they differ are marked:\n"
         "click one to choose, or Escape. Without a window the game's plies are written instead.\n"
         "\n"
         "  --headless  no window, even where a display exists\n"
         "  --plies N   without a window: play at most N plies (default 40)\n"
         "  --out DIR   without a window: the folder of the pictures (default out/demo)\n"
         "  --seed S    the opponent's choices repeat under the same seed\n"
         "  --pdn FILE  step through a game of a PDN file\n"
         "  --game N    which game of the file (default 1)\n"
         "  --help      this text\n";
}

}  // namespace demo
