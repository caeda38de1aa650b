#pragma once
// What ostrel-render reads from its command line: a position in draughts FEN, a move, a list of
// fields, and the options that say how to draw them.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ostrel/draughts.h"

namespace render {

// Field codes of the control, slot = field number - 1.
inline constexpr int16_t kEmpty = 0, kWhiteMan = 2, kBlackMan = 3, kWhiteKing = 4, kBlackKing = 5;

using Position = std::array<int16_t, 50>;

// From this far the whole board fits a square picture seen from straight above.
inline constexpr float kWholeBoardDistance = 22.0f;

Position startingPosition();

// The control's field codes of a position of the host kit.
Position codesOf(const ostrel::draughts::Position& position);

// A position as the host kit reads FEN ("W:W31-50:B1-20", "W:WK46,31-35:B1-5,K12"), also inside
// quotes or a [FEN "..."] wrapper, and only when the board can show it. No value when the text is
// not such a position; error says why.
std::optional<Position> parseFen(std::string_view text, std::string& error);

// The field on which a move such as "32-28" or "26x37x48" ends; no value when the move is not a
// list of two or more field numbers.
std::optional<int16_t> lastField(std::string_view move);

// A "|" list of field numbers, as the control takes it ("7|12"); false when a name is no field.
bool validFieldList(std::string_view fields);

struct Options {
  Position position = startingPosition();
  int width = 640, height = 640;  // square: discs stay round
  std::optional<float> elevation, azimuth;
  float distance = kWholeBoardDistance;
  std::string lastMove, marks;
  int antiAliasing = 2;
  int anisotropy = 16;  // the adapter's MaxAnisotropy
  bool shadows = true;
  std::string modelFolder;  // empty: the shipped models
  std::string out = "board.png";
  std::string emf;  // also the picture as an enhanced metafile, under this name as given
  bool help = false;
};

// Reads the arguments after the program name. No value on a bad argument; error says which.
std::optional<Options> parseArguments(const std::vector<std::string>& args, std::string& error);

std::string usage(std::string_view program);

// A whole decimal number, nothing but spaces around it; no value when it is not one or overflows.
std::optional<int> wholeNumber(std::string_view s);

// The value that follows the option at args[i], moving i onto it; false, with error saying so,
// when the option comes last.
bool optionValue(const std::vector<std::string>& args, size_t& i, std::string& out,
                 std::string& error);

}  // namespace render
