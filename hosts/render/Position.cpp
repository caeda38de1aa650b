#include "Position.h"

#include <cctype>
#include <charconv>
#include <cmath>

namespace render {

namespace {

constexpr int kFields = 50;
constexpr int kMaxPixels = 8192;
// A side starts with 20 pieces and never gets more.
constexpr int kMaxPiecesPerColour = 20;
// The control has this many discs of each colour; a king stands on two of them.
constexpr int kDiscsPerColour = 24;

std::string_view trim(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return s;
}

std::vector<std::string_view> split(std::string_view s, char delimiter) {
  std::vector<std::string_view> parts;
  size_t start = 0;
  for (size_t i = 0; i <= s.size(); ++i) {
    if (i == s.size() || s[i] == delimiter) {
      parts.push_back(s.substr(start, i - start));
      start = i + 1;
    }
  }
  return parts;
}

std::optional<int16_t> fieldNumber(std::string_view s) {
  auto n = wholeNumber(s);
  if (!n || *n < 1 || *n > kFields) return std::nullopt;
  return static_cast<int16_t>(*n);
}

std::optional<float> realNumber(const std::string& s) {
  if (s.empty()) return std::nullopt;
  char* end = nullptr;
  const float value = std::strtof(s.c_str(), &end);
  if (end != s.c_str() + s.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

// Removes a [FEN "..."] wrapper, quotes and a closing full stop.
std::string_view unwrap(std::string_view s) {
  s = trim(s);
  if (s.size() >= 2 && s.front() == '[' && s.back() == ']') {
    s = trim(s.substr(1, s.size() - 2));
    if (s.size() >= 3 && (s.substr(0, 3) == "FEN" || s.substr(0, 3) == "fen")) {
      s = trim(s.substr(3));
    }
  }
  if (s.size() >= 2 && s.front() == '"' && s.back() == '"') s = trim(s.substr(1, s.size() - 2));
  if (!s.empty() && s.back() == '.') s = trim(s.substr(0, s.size() - 1));
  return s;
}

// What no game reaches, or what the board cannot show: more than 20 pieces of a colour, or more
// discs than the control has of that colour.
bool possible(const Position& position, std::string& error) {
  for (bool white : {true, false}) {
    int men = 0, kings = 0;
    for (int16_t code : position) {
      men += code == (white ? kWhiteMan : kBlackMan);
      kings += code == (white ? kWhiteKing : kBlackKing);
    }
    const std::string colour = white ? "white" : "black";
    if (men + kings > kMaxPiecesPerColour) {
      error = colour + " has " + std::to_string(men + kings) + " pieces; a side has at most " +
              std::to_string(kMaxPiecesPerColour);
      return false;
    }
    if (men + 2 * kings > kDiscsPerColour) {
      error = colour + " needs " + std::to_string(men + 2 * kings) +
              " discs (a king takes two); the board has " + std::to_string(kDiscsPerColour) +
              " of a colour";
      return false;
    }
  }
  return true;
}

}  // namespace

// A whole decimal number, nothing before or after it.
std::optional<int> wholeNumber(std::string_view s) {
  s = trim(s);
  int value = 0;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
  if (s.empty() || ec != std::errc() || end != s.data() + s.size()) return std::nullopt;
  return value;
}

bool optionValue(const std::vector<std::string>& args, size_t& i, std::string& out,
                 std::string& error) {
  if (i + 1 >= args.size()) {
    error = args[i] + " needs a value";
    return false;
  }
  out = args[++i];
  return true;
}

Position startingPosition() {
  Position p{};
  for (int f = 1; f <= 20; ++f) p[static_cast<size_t>(f - 1)] = kBlackMan;
  for (int f = 31; f <= 50; ++f) p[static_cast<size_t>(f - 1)] = kWhiteMan;
  return p;
}

Position codesOf(const ostrel::draughts::Position& position) {
  Position codes{};
  for (size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<int16_t>(position.squares[i]);
  return codes;
}

std::optional<Position> parseFen(std::string_view text, std::string& error) {
  std::string_view s = unwrap(text);
  if (s.empty()) {
    error = "the FEN is empty: give a position such as W:W31-50:B1-20";
    return std::nullopt;
  }
  ostrel::draughts::TextError fault;
  const auto read = ostrel::draughts::parseFen(s, &fault);
  if (!read) {
    error = "not a position: " + fault.message + " at column " + std::to_string(fault.column) +
            " of \"" + std::string(s) + "\"";
    return std::nullopt;
  }
  Position position = codesOf(*read);
  if (!possible(position, error)) return std::nullopt;
  return position;
}

std::optional<int16_t> lastField(std::string_view move) {
  move = trim(move);
  if (move.empty()) return std::nullopt;
  // A capture's "x" separates fields as "-" does.
  std::string normal(move);
  for (char& c : normal) {
    if (c == 'x' || c == 'X') c = '-';
  }
  const auto tokens = split(normal, '-');
  if (tokens.size() < 2) return std::nullopt;
  std::optional<int16_t> last;
  for (std::string_view token : tokens) {
    last = fieldNumber(token);
    if (!last) return std::nullopt;
  }
  return last;
}

bool validFieldList(std::string_view fields) {
  if (trim(fields).empty()) return false;
  for (std::string_view name : split(fields, '|')) {
    if (!fieldNumber(name)) return false;
  }
  return true;
}

std::optional<Options> parseArguments(const std::vector<std::string>& args, std::string& error) {
  Options o;
  bool haveFen = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string& out) { return optionValue(args, i, out, error); };
    auto pixels = [&](int& out) {
      std::string v;
      if (!value(v)) return false;
      auto n = wholeNumber(v);
      if (!n || *n < 16 || *n > kMaxPixels) {
        error = a + " takes a whole number of pixels from 16 to " + std::to_string(kMaxPixels);
        return false;
      }
      out = *n;
      return true;
    };
    auto real = [&](std::optional<float>& out) {
      std::string v;
      if (!value(v)) return false;
      out = realNumber(v);
      if (!out) error = a + " takes a number, not \"" + v + "\"";
      return out.has_value();
    };
    std::string v;
    if (a == "-h" || a == "--help") {
      o.help = true;
    } else if (a == "--size") {
      int n = 0;
      if (!pixels(n)) return std::nullopt;
      o.width = o.height = n;
    } else if (a == "--width") {
      if (!pixels(o.width)) return std::nullopt;
    } else if (a == "--height") {
      if (!pixels(o.height)) return std::nullopt;
    } else if (a == "--elevation") {
      if (!real(o.elevation)) return std::nullopt;
    } else if (a == "--azimuth") {
      if (!real(o.azimuth)) return std::nullopt;
    } else if (a == "--distance") {
      std::optional<float> d;
      if (!real(d)) return std::nullopt;
      if (*d < 0.1f || *d > 800.0f) {
        error = "--distance takes a number from 0.1 to 800";
        return std::nullopt;
      }
      o.distance = *d;
    } else if (a == "--anisotropy") {
      if (!value(v)) return std::nullopt;
      auto n = wholeNumber(v);
      if (!n || *n < 1 || *n > 16) {
        error = "--anisotropy takes 1 to 16, not \"" + v + "\"";
        return std::nullopt;
      }
      o.anisotropy = *n;
    } else if (a == "--last-move") {
      if (!value(o.lastMove)) return std::nullopt;
      if (!lastField(o.lastMove)) {
        error = "--last-move takes a move such as 32-28 or 26x37x48, not \"" + o.lastMove + "\"";
        return std::nullopt;
      }
    } else if (a == "--mark") {
      if (!value(o.marks)) return std::nullopt;
      if (!validFieldList(o.marks)) {
        error = "--mark takes fields such as 7|12, not \"" + o.marks + "\"";
        return std::nullopt;
      }
    } else if (a == "--aa") {
      if (!value(v)) return std::nullopt;
      auto n = wholeNumber(v);
      if (!n || *n < 0 || *n > 2) {
        error = "--aa takes 0, 1 or 2, not \"" + v + "\"";
        return std::nullopt;
      }
      o.antiAliasing = *n;
    } else if (a == "--no-shadows") {
      o.shadows = false;
    } else if (a == "--models") {
      if (!value(o.modelFolder)) return std::nullopt;
    } else if (a == "--out" || a == "-o") {
      if (!value(o.out)) return std::nullopt;
      if (o.out.empty()) {
        error = "--out needs a file name";
        return std::nullopt;
      }
    } else if (a == "--emf") {
      if (!value(o.emf)) return std::nullopt;
      if (o.emf.empty()) {
        error = "--emf needs a file name";
        return std::nullopt;
      }
    } else if (a == "--fen" || (!a.empty() && a[0] != '-')) {
      std::string text = a;
      if (a == "--fen" && !value(text)) return std::nullopt;
      if (haveFen) {
        error = "only one position: \"" + text + "\"";
        return std::nullopt;
      }
      auto position = parseFen(text, error);
      if (!position) return std::nullopt;
      o.position = *position;
      haveFen = true;
    } else {
      error = "unknown option " + a;
      return std::nullopt;
    }
  }
  return o;
}

std::string usage(std::string_view program) {
  std::string p(program);
  return "usage: " + p +
         " [options] [FEN]\n"
         "Draws a draughts position on the 3D board, headless, and writes it as a PNG file.\n"
         "\n"
         "  FEN, --fen FEN      the position, e.g. W:W31-50:B1-20 (the default, the start);\n"
         "                      kings with K: W:WK46,31-35:B1-5,K12\n"
         "  --size N            a square picture of N x N pixels (default 640)\n"
         "  --width N, --height N\n"
         "                      the picture's size; discs are round only when it is square\n"
         "  --elevation RAD     camera elevation, radians (default straight above, 1.5708)\n"
         "  --azimuth RAD       camera azimuth, radians (default -3.14159: white at the bottom)\n"
         "  --distance D        camera distance from the board's centre (default 22, the\n"
         "                      whole board)\n"
         "  --last-move MOVE    marks the field where MOVE ends, e.g. 32-28\n"
         "  --mark FIELDS       marks fields, e.g. \"7|12\"\n"
         "  --aa N              anti-aliasing quality 0, 1 or 2 (default 2)\n"
         "  --anisotropy N      texture filtering the adapter offers, 1 to 16 (default 16)\n"
         "  --no-shadows        draws no shadows under the pieces\n"
         "  --models DIR        the folder that holds models/ (default: the shipped models)\n"
         "  --out FILE.png      where the picture goes (default board.png)\n"
         "  --emf FILE          also saves the picture as an enhanced metafile (no extension\n"
         "                      is added)\n"
         "  -h, --help          this text\n";
}

}  // namespace render
