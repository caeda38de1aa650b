#pragma once
// The host kit for international draughts: positions, legal moves, move texts, FEN and PDN.
// The board control knows no rules; a host uses this to decide what it offers and plays.
//
// Fields are numbered 1 to 50 as on a printed diagram: field 1 is the second square of the top
// row (black's back row), field 5 the top right corner, field 46 the bottom left corner. White
// starts on 31 to 50 and moves up, toward the lower numbers.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ostrel::draughts {

// The control's codes of a field, so that a position goes into `field` unchanged.
enum Piece : int16_t { Empty = 0, WhiteMan = 2, BlackMan = 3, WhiteKing = 4, BlackKing = 5 };

enum class Side : uint8_t { White, Black };

constexpr int kFields = 50;

struct Position {
  std::array<Piece, kFields> squares{};  // slot = field - 1
  Side toMove = Side::White;

  static Position start();  // black men on 1 to 20, white men on 31 to 50, white to move
  // The piece on a field 1..50; Empty outside.
  Piece at(int field) const;
  void set(int field, Piece piece);  // ignored outside 1..50
  bool operator==(const Position&) const = default;
};

// One legal move: the route of the moving piece and the pieces it takes. Routes that take the
// same pieces from the same source to the same destination are one move; its route is one of
// them.
struct Move {
  static constexpr int kMaxTaken = 20;         // the other side has no more pieces
  std::array<uint8_t, kMaxTaken + 1> stops{};  // source, every landing field, destination
  std::array<uint8_t, kMaxTaken> taken{};      // fields of the taken pieces, in the order jumped
  uint8_t stopCount = 0;
  uint8_t takenCount = 0;
  uint64_t takenMask = 0;  // bit (field - 1) set for each taken piece

  int from() const { return stops[0]; }
  int to() const { return stops[stopCount - 1]; }
  bool isCapture() const { return takenCount > 0; }
  std::span<const uint8_t> route() const { return {stops.data(), stopCount}; }
  std::span<const uint8_t> captured() const { return {taken.data(), takenCount}; }
  // Same source, destination and set of taken pieces: the same move whatever the route.
  bool sameMove(const Move& other) const {
    return from() == other.from() && to() == other.to() && takenMask == other.takenMask;
  }
};

// Every legal move of the side to move: captures are compulsory, the most pieces must be taken,
// kings fly, a piece is taken only at the end of the capture and none is jumped twice.
std::vector<Move> legalMoves(const Position& position);
// The same into a list that is cleared first, so that a caller can keep its storage.
void legalMoves(const Position& position, std::vector<Move>& out);
// The position after a legal move: taken pieces off, a man that ends on the far row crowned, the
// other side to move.
Position play(const Position& position, const Move& move);
// The number of move sequences of the given length from the position.
uint64_t perft(const Position& position, int depth);

// Where a text went wrong: line and column count from 1, columns in characters.
struct TextError {
  int line = 1;
  int column = 1;
  std::string message;
  std::string describe() const;  // "line 3, column 7: message"
};

// ---- move texts ----

// "32-28" for a plain move, "19x28" for a capture: source and destination.
std::string shortText(const Move& move);
// Every stop of the route: "32-28", or "47x38x24x13x36" for a capture.
std::string pathText(const Move& move);
// The move string the control's addMoveList and showMove take: the route joined by "-".
std::string controlText(const Move& move);
// The taken pieces as the control's field list for setHLfields: "23|33", "" for a plain move.
std::string takenFields(const Move& move);
// The shortest text that names this move alone among the legal moves: the short form, else the
// full path, else the path with the taken fields added in parentheses: "15x24x33 (20,29)".
std::string moveText(const Move& move, std::span<const Move> legal);

// The legal moves in the control's move-string form, in the order of legalMoves: what a host
// passes to addMoveList, so that the index that moveDone reports is an index into legalMoves.
std::vector<std::string> controlMoveList(const Position& position);

// Which legal move a written move names: "32-28", "19x28", "47x38x24x13x36", a route that gives
// only some of its stops, a text with captured fields in parentheses; "-", "x" and ":" between
// fields, blanks around them allowed. A text that fits several moves is ambiguous, never guessed.
struct MoveMatch {
  std::optional<size_t> index;  // into the legal moves, when exactly one fits
  std::vector<size_t> fits;     // every legal move that fits (two or more: ambiguous)
  std::string error;            // why none or several fit; empty when index is set
};
MoveMatch matchMove(const Position& position, std::span<const Move> legal,
                    std::string_view written);

// ---- FEN ----

// "W:W31-50:B1-20": side to move, then the white and the black lists in either order, K before a
// king's field, ranges, empty lists; blanks and a trailing dot are tolerated.
std::optional<Position> parseFen(std::string_view text, TextError* error = nullptr);
// Reads into `position` only when the whole text is good; otherwise leaves it and says why.
bool readFen(std::string_view text, Position& position, TextError& error);
// "W:W31,32,...:B1,...,K20": fields in order, no ranges, kings with K.
std::string toFen(const Position& position);

// ---- PDN ----

struct PdnTag {
  std::string name;
  std::string value;
};

struct PdnMove {
  Move move;            // the legal move it names
  std::string written;  // as it stands in the file
  std::string text;     // moveText of the move
  int line = 0;         // where it stands
  int column = 0;
  std::string marks;    // "!", "?", "!?" ... and numeric annotations "$1", space separated
  std::string comment;  // the comments that follow it, joined by a blank
  std::vector<std::string> variations;  // the variations that follow it, as written, unplayed
};

struct PdnGame {
  int number = 0;  // counted from 1 in the file
  int line = 0;    // where the game begins
  std::vector<PdnTag> tags;
  Position start;                  // the [FEN] tag's position, or the start position
  std::vector<PdnMove> moves;      // the moves read and matched, up to the first error
  std::string result;              // the result token, else the Result tag, else ""
  std::string comment;             // comments before the first move
  std::optional<TextError> error;  // the first move not legal or not understood, if any

  // The value of a tag by name (case-sensitive), "" when absent.
  std::string tag(std::string_view name) const;
  // The position after the first `ply` moves (0: the start), clamped to the moves read.
  Position positionAfter(size_t ply) const;
};

struct PdnFile {
  std::vector<PdnGame> games;
};

// Reads every game of a PDN text: UTF-8, Latin-1 (turned into UTF-8), LF or CRLF. A game that
// cannot be read to its end keeps the moves before the fault and its error; the next game is
// read again from its own tags.
PdnFile readPdn(std::string_view text);

}  // namespace ostrel::draughts
